VERSION 5.00
Object = "{00000000-0000-0000-0000-000000000001}#1.0#0"; "shapes.ocx"
Begin VB.Form frmMain
   Caption         =   "Übersicht"
   Begin VB.CommandButton cmdOK
      Caption         =   "OK"
      BeginProperty Font
         Name            =   "Serif"
      EndProperty
   End
End
Attribute VB_Name = "frmMain"
Option Explicit
#If DEBUG_BUILD Then
Private Const Mode = "debug"
#Else
Private Const Mode = "release"
Private Sub Trace()
End Sub
#End If
Private mClicks As Integer

Private Sub cmdOK_Click()
    mClicks = mClicks + 1 ' zählt
    If mClicks > 3 Then
        Unload Me
    End If
End Sub

Private Sub Form_Load()
    Caption = "Übersicht": mClicks = 0
End Sub
