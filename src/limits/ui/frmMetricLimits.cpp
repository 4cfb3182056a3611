#include "limits/ui/frmMetricLimits.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "grid/OwnerGridEvents.h"
#include "grid/OwnerGridLogic.h"
#include "grid/ui/OwnerGrid.h"
#include "limits/MetricLimits.h"
#include "limits/MetricLimitsDialogModel.h"
#include "support/ui/DialogButton.h"

namespace ombrelle {

namespace {

constexpr float kMetricColumnWidth = 110.0f;
constexpr float kRuleColumnWidth = 190.0f;

}  // namespace

// Answers the grid's cell requests from the model and tells it the row
// under the cursor.
class frmMetricLimits::GridOwner : public OwnerGridEvents {
 public:
  explicit GridOwner(frmMetricLimits& window) : m_window(window) {}
  void DataRequest(int row, int column, QString& text, quint32&) override {
    text = m_window.m_model.CellText(row, column);
  }
  void EnterRow(int row) override { m_window.m_model.SetCurrentRow(row); }
  void DblClickCell(int row, int) override {
    if (row < 1 || !m_window.m_model.ListButtonsEnabled()) return;
    m_window.m_model.SetCurrentRow(row);
    m_window.m_model.EditRule();
    m_window.Sync();
  }

 private:
  frmMetricLimits& m_window;
};

frmMetricLimits::frmMetricLimits(MetricLimitsDialogModel& model, QWidget* parent)
    : QDialog(parent), m_model(model), m_gridOwner(std::make_unique<GridOwner>(*this)) {
  setObjectName(QStringLiteral("frmMetricLimits"));
  setWindowTitle(MetricLimitsDialogModel::DesignTitle());
  BuildWidgets();
  setWindowTitle(m_model.Title());
  Sync();
  // Room for a dozen rules; the read-only view has no frame below them.
  resize(m_model.ReadOnly() ? QSize(420, 400) : QSize(500, 520));
}

frmMetricLimits::~frmMetricLimits() { m_grid->SetOwner(nullptr); }

void frmMetricLimits::BuildWidgets() {
  auto* layout = new QVBoxLayout(this);

  auto* nameRow = new QHBoxLayout();
  m_nameLabel = new QLabel(QStringLiteral("&Name:"), this);
  m_name = new QLineEdit(m_model.Name(), this);
  m_name->setObjectName(QStringLiteral("txtMetricLimitName"));
  m_nameLabel->setBuddy(m_name);
  connect(m_name, &QLineEdit::textEdited, this, [this](const QString& text) {
    m_model.SetName(text);
    setWindowTitle(m_model.Title());
  });
  nameRow->addWidget(m_nameLabel);
  nameRow->addWidget(m_name, 1);
  layout->addLayout(nameRow);

  auto* middle = new QHBoxLayout();
  m_grid = new OwnerGrid(this);
  m_grid->setObjectName(QStringLiteral("Grid"));
  OwnerGridLogic& grid = m_grid->Logic();
  grid.SetOwner(m_gridOwner.get());
  grid.SetColumns(2);
  grid.SetFixedColumns(0);
  grid.SetSortable(false);
  for (int column = 1; column <= 2; ++column)
    grid.SetColumnCaption(column, MetricLimitsDialogModel::ColumnCaption(column));
  grid.SetColumnWidth(1, kMetricColumnWidth);
  grid.SetColumnWidth(2, kRuleColumnWidth);
  grid.SetColumnAlignment(1, 0);  // left
  grid.SetColumnAlignment(2, 0);
  grid.SetBorderStyle(1);
  m_grid->setMinimumSize(static_cast<int>(kMetricColumnWidth + kRuleColumnWidth) + 40, 220);
  middle->addWidget(m_grid, 1);

  auto* listButtons = new QVBoxLayout();
  m_add = MakeDialogButton(QStringLiteral("bAdd"), QStringLiteral("&Add rule"), this);
  m_edit = MakeDialogButton(QStringLiteral("bEdit"), QStringLiteral("&Edit rule"), this);
  m_delete = MakeDialogButton(QStringLiteral("bDelete"), QStringLiteral("&Delete rule"), this);
  for (QPushButton* button : {m_add, m_edit, m_delete}) listButtons->addWidget(button);
  listButtons->addStretch(1);
  middle->addLayout(listButtons);
  layout->addLayout(middle, 1);
  connect(m_add, &QPushButton::clicked, this, [this] {
    m_model.Add();
    Sync();
    m_metric->setFocus();
  });
  connect(m_edit, &QPushButton::clicked, this, [this] {
    m_model.EditRule();
    Sync();
  });
  connect(m_delete, &QPushButton::clicked, this, [this] {
    m_model.DeleteRule();
    Sync();
  });

  layout->addWidget(BuildEditFrame());

  auto* bottom = new QHBoxLayout();
  m_readOnly = new QLabel(MetricLimitsDialogModel::ReadOnlyText(), this);
  m_readOnly->setObjectName(QStringLiteral("lblReadOnly"));
  bottom->addWidget(m_readOnly, 1);
  bottom->addStretch(0);
  m_ok = MakeDialogButton(QStringLiteral("bOK"), QStringLiteral("A&ccept"), this);
  m_cancel = MakeDialogButton(QStringLiteral("bCancel"), m_model.CancelCaption(), this);
  bottom->addWidget(m_ok);
  bottom->addWidget(m_cancel);
  layout->addLayout(bottom);
  connect(m_ok, &QPushButton::clicked, this, [this] {
    m_model.Accept();
    accept();
  });
  connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
}

QWidget* frmMetricLimits::BuildEditFrame() {
  m_frame = new QGroupBox(QStringLiteral("Rule"), this);
  m_frame->setObjectName(QStringLiteral("frameEdit"));
  auto* form = new QGridLayout(m_frame);

  m_class = new QComboBox(m_frame);
  m_class->setObjectName(QStringLiteral("cboMetricClass"));
  m_class->addItems(MetricLimitsDialogModel::ClassItems());
  m_metric = new QComboBox(m_frame);
  m_metric->setObjectName(QStringLiteral("cboMetricName"));
  m_metric->setMaxVisibleItems(20);
  m_metric->setMinimumContentsLength(10);
  m_metricName = new QLabel(m_frame);
  m_metricName->setObjectName(QStringLiteral("lblMetricName"));
  m_metricName->setWordWrap(true);
  m_condition = new QComboBox(m_frame);
  m_condition->setObjectName(QStringLiteral("cboCondition"));
  m_condition->addItems(MetricLimitsDialogModel::ConditionItems());
  for (int box = 0; box < 2; ++box) {
    m_limit[box] = new QLineEdit(m_frame);
    m_limit[box]->setObjectName(QStringLiteral("Limit%1").arg(box));
    m_limit[box]->setMaximumWidth(110);
    connect(m_limit[box], &QLineEdit::textEdited, this,
            [this, box](const QString& text) { m_model.SetLimitText(box, text); });
  }
  m_rangeLine = new QLabel(QStringLiteral("to"), m_frame);
  m_rangeLine->setObjectName(QStringLiteral("RangeLine"));

  auto* classLabel = new QLabel(QStringLiteral("C&lass:"), m_frame);
  classLabel->setBuddy(m_class);
  auto* metricLabel = new QLabel(QStringLiteral("&Metric:"), m_frame);
  metricLabel->setBuddy(m_metric);
  auto* conditionLabel = new QLabel(QStringLiteral("C&ondition:"), m_frame);
  conditionLabel->setBuddy(m_condition);
  form->addWidget(classLabel, 0, 0);
  form->addWidget(m_class, 0, 1);
  form->addWidget(metricLabel, 1, 0);
  form->addWidget(m_metric, 1, 1);
  form->addWidget(m_metricName, 1, 2, 1, 4);
  form->addWidget(conditionLabel, 2, 0);
  form->addWidget(m_condition, 2, 1);
  form->addWidget(m_limit[0], 2, 2);
  form->addWidget(m_rangeLine, 2, 3);
  form->addWidget(m_limit[1], 2, 4);
  form->setColumnStretch(5, 1);

  auto* frameButtons = new QHBoxLayout();
  frameButtons->addStretch(1);
  m_save = MakeDialogButton(QStringLiteral("bSave"), QStringLiteral("&Save rule"), m_frame);
  m_discard = MakeDialogButton(QStringLiteral("bDiscard"), QStringLiteral("&Discard"), m_frame);
  frameButtons->addWidget(m_save);
  frameButtons->addWidget(m_discard);
  form->addLayout(frameButtons, 3, 0, 1, 6);

  connect(m_class, &QComboBox::activated, this, [this](int index) {
    m_model.SetClassIndex(index);
    SyncFrame();
  });
  connect(m_metric, &QComboBox::activated, this, [this](int index) {
    m_model.SetMetricIndex(index);
    SyncFrame();
  });
  connect(m_condition, &QComboBox::activated, this, [this](int index) {
    m_model.SetConditionIndex(index);
    SyncFrame();
  });
  connect(m_save, &QPushButton::clicked, this, [this] {
    m_model.SaveRule();
    Sync();
  });
  connect(m_discard, &QPushButton::clicked, this, [this] {
    m_model.Discard();
    Sync();
  });
  return m_frame;
}

void frmMetricLimits::Sync() {
  const bool readOnly = m_model.ReadOnly();
  m_nameLabel->setVisible(!readOnly);
  m_name->setVisible(!readOnly);
  for (QPushButton* button : {m_add, m_edit, m_delete}) {
    button->setVisible(!readOnly);
    button->setEnabled(m_model.ListButtonsEnabled());
  }
  m_frame->setVisible(!readOnly);
  m_ok->setVisible(!readOnly);
  m_cancel->setText(m_model.CancelCaption());
  m_readOnly->setVisible(readOnly);
  m_grid->setEnabled(!m_model.FrameOpen());
  SyncGrid();
  SyncFrame();
  // Enter saves the rule while one is edited, and accepts the dialog else.
  m_save->setDefault(m_model.FrameOpen());
  (readOnly ? m_cancel : m_ok)->setDefault(!m_model.FrameOpen());
}

void frmMetricLimits::SyncGrid() {
  OwnerGridLogic& grid = m_grid->Logic();
  grid.DisableRefresh();
  grid.SetRows(m_model.GetRules());
  grid.EnableRefresh();
  if (m_model.CurrentRow() > 0) grid.PlaceCursor(m_model.CurrentRow(), 1);
  grid.Refresh();
}

void frmMetricLimits::FillMetricCombo() {
  const QSignalBlocker quiet(m_metric);
  m_metric->clear();
  for (const ChoiceList::Item& item : m_model.MetricChoices().Items()) m_metric->addItem(item.text);
}

void frmMetricLimits::SyncFrame() {
  const bool open = m_model.FrameOpen();
  m_frame->setEnabled(open);
  {
    const QSignalBlocker quietClass(m_class);
    m_class->setCurrentIndex(m_model.ClassIndex());
  }
  if (m_metric->count() != m_model.MetricChoices().Count() ||
      (m_metric->count() > 0 && m_metric->itemText(0) != m_model.MetricChoices().At(0).text))
    FillMetricCombo();
  {
    const QSignalBlocker quiet(m_metric);
    m_metric->setCurrentIndex(m_model.MetricIndex());
  }
  m_metricName->setText(m_model.MetricLongName());
  {
    const QSignalBlocker quiet(m_condition);
    m_condition->setCurrentIndex(m_model.ConditionIndex());
  }
  for (int box = 0; box < 2; ++box) {
    m_limit[box]->setText(m_model.LimitText(box));
    m_limit[box]->setVisible(m_model.LimitVisible(box));
  }
  m_rangeLine->setVisible(m_model.RangeLineVisible());
}

void frmMetricLimits::keyPressEvent(QKeyEvent* event) {
  // Esc leaves an open frame before it leaves the dialog.
  if (event->key() == Qt::Key_Escape && m_model.FrameOpen()) {
    m_model.Discard();
    Sync();
    return;
  }
  QDialog::keyPressEvent(event);
}

bool frmMetricLimits::Display(MetricLimitsDialogModel& model, QWidget* parent) {
  frmMetricLimits dialog(model, parent);
  dialog.exec();
  return model.Accepted();
}

void frmMetricLimits::Install() {
  MetricLimits::SetDialogRunner(
      [](MetricLimitsDialogModel& model) { return Display(model, QApplication::activeWindow()); });
}

}  // namespace ombrelle
