Attribute VB_Name = "Tools"
Option Explicit
' Shared tools _
  still the same comment
   _

Public gCount As Long, gNames(1 To 3) As String
Private mLast As String ' end-of-line note
Const PI = 3.14, EULER = 2.71
'
Public Type Point
    X As Long
    Y As Long
End Type
Enum Colour
    Red = 1
    Green
End Enum
Private Declare Function GetTickCount Lib "kernel32" () As Long

Public Function Describe(ByVal n As Long, Optional s As String = "a""b:c") As String
    Dim i As Long, j As Long
    Rem counts down _
        by one
    If n > 0 And n < 10 Then
        For i = 1 To n
            gCount = gCount + i: mLast = "it's"
        Next i
    ElseIf n = 0 Then
        Describe = "zero" ' no loop
    Else
        GoTo Done
    End If
    If s = "" Then s = "x" Else s = s & "y"
Done:
    Describe = s & _
        mLast
End Function
