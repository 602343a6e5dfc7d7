#include "datawindow/dwf.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScrollBar>

#include "base/user_interface.h"
#include "datawindow/datawindow.h"
#include "ui_dwf.h"
#include "widgets/twips.h"

namespace {

constexpr int width_in_twips = 9600;
constexpr int height_in_twips = 5400;
constexpr int widest_of_dadd = 3500;
constexpr int narrowest_editor = 900;
constexpr int twips_per_inch = 1440;
constexpr int longest_cell = 1 << 30;  // no limit of the editor's own

bool is_enter(const QKeyEvent& event) { return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter; }

}  // namespace

dwf::dwf(mdi_host& host) : ui_(std::make_unique<Ui::dwf>()) {
  ui_->setupUi(this);
  menuBar()->setNativeMenuBar(false);
  menuBar()->hide();
  ui_->mnuMouse->menuAction()->setVisible(false);
  setFocusProxy(ui_->dwg);
  resize(twips_to_pixels(width_in_twips, *this), twips_to_pixels(height_in_twips, *this));
  ui_->dwg->set_mark(DataWindow::null_text);
  ui_->dwg->setContextMenuPolicy(Qt::CustomContextMenu);
  ui_->dwg->installEventFilter(this);
  // In the viewport the editor scrolls with its cell.
  ui_->Text1->setParent(ui_->dwg->viewport());
  ui_->Text1->setMaxLength(longest_cell);
  ui_->Text1->hide();
  ui_->Text1->installEventFilter(this);

  connect(ui_->dwg, &QTableView::doubleClicked, this, &dwf::dwg_DblClick);
  connect(ui_->dwg, &QWidget::customContextMenuRequested, this, &dwf::dwg_MouseUp);
  connect(ui_->dwg, &flexgrid::row_col_changed, this, &dwf::dwg_RowColChange);
  connect(ui_->dwg, &flexgrid::reached_bottom, this, &dwf::fetch_more);
  connect(ui_->mnuClipCells, &QAction::triggered, this, &dwf::mnuClipCells_Click);
  connect(ui_->mnuClipCopy, &QAction::triggered, this, &dwf::mnuClipCopy_Click);
  connect(ui_->mnuAggCol, &QAction::triggered, this, &dwf::mnuAggCol_Click);
  connect(ui_->mnuSortAscending, &QAction::triggered, this, &dwf::mnuSortAscending_Click);
  connect(ui_->mnuSortDesc, &QAction::triggered, this, &dwf::mnuSortDesc_Click);
  connect(ui_->mnuWindowList, &QMenu::aboutToShow, this, [this, &host] { host.fill_window_list(*ui_->mnuWindowList); });
}

dwf::~dwf() = default;

flexgrid& dwf::grid() const { return *ui_->dwg; }

QList<QAction*> dwf::menu_bar_actions() const { return menuBar()->actions(); }

bool dwf::eventFilter(QObject* watched, QEvent* event) {
  if (watched == ui_->dwg) {
    if (event->type() == QEvent::FocusIn) Form_GotFocus();
    if (event->type() == QEvent::KeyPress && dwg_KeyDown(static_cast<const QKeyEvent&>(*event))) return true;
  }
  if (watched == ui_->Text1) {
    if (event->type() == QEvent::KeyPress && Text1_KeyDown(static_cast<const QKeyEvent&>(*event))) return true;
    // Whoever goes on working in the grid has given the edit up; another window or a menu does not end it.
    if (event->type() == QEvent::FocusOut && ui_->dwg->hasFocus()) leave_editor();
  }
  return QMainWindow::eventFilter(watched, event);
}

void dwf::Form_GotFocus() {
  if (Caller == nullptr) return;
  Caller->RowsFetched = qMax(0, ui_->dwg->Rows() - 1);
  Caller->notice_lost_result();
}

void dwf::dwg_DblClick() {
  if (Caller != nullptr) Caller->RowPicked(ui_->dwg->row(), ui_->dwg->column());
}

bool dwf::dwg_KeyDown(const QKeyEvent& event) {
  if (is_enter(event)) {
    dwg_DblClick();
    return true;
  }
  // With a modifier the key belongs to the clipboard.
  if (event.key() != Qt::Key_Insert || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return false;
  start_editor();
  return true;
}

void dwf::dwg_MouseUp(const QPoint& position) { ui_->mnuMouse->popup(ui_->dwg->viewport()->mapToGlobal(position)); }

void dwf::dwg_RowColChange() {
  if (ui_->dwg->row() == ui_->dwg->Rows() - 1) fetch_more();
}

void dwf::fetch_more() {
  if (Caller == nullptr || Caller->IgnoreRowColChange || !Caller->MoreRows) return;
  const std::shared_ptr<DataWindow> caller = Caller;
  caller->IgnoreRowColChange = true;
  const int row = ui_->dwg->row();
  const int column = ui_->dwg->column();
  caller->FetchMore();
  if (row != ui_->dwg->row() || column != ui_->dwg->column()) ui_->dwg->set_current(row, column);
  ui_->dwg->viewport()->update();
  caller->IgnoreRowColChange = false;
}

void dwf::mnuClipCells_Click() {
  QClipboard* clipboard = QGuiApplication::clipboard();
  clipboard->clear();
  clipboard->setText(ui_->dwg->clip());
}

void dwf::mnuClipCopy_Click() {
  flexgrid& all = *ui_->dwg;
  QString text;
  if (all.Rows() > 1 && all.Cols() > 1) {
    const bool before = Caller != nullptr && std::exchange(Caller->IgnoreRowColChange, true);
    all.set_current(1, 1);
    all.select_to(all.Rows() - 1, all.Cols() - 1);
    if (Caller != nullptr) Caller->IgnoreRowColChange = before;
    text = all.clip();
  }
  QClipboard* clipboard = QGuiApplication::clipboard();
  clipboard->clear();
  clipboard->setText(text);
}

void dwf::mnuAggCol_Click() {
  if (ui_->dwg->column() <= 0 || ui_->dwg->row() == -1) return;
  ui_->dwg->set_free_merging(true);
  ui_->dwg->set_merge_column(ui_->dwg->column(), true);
}

void dwf::mnuSortAscending_Click() { sort_rows(true); }
void dwf::mnuSortDesc_Click() { sort_rows(false); }

void dwf::sort_rows(bool ascending) {
  flexgrid& sorted = *ui_->dwg;
  const int row = sorted.row();
  const int column = sorted.column();
  if (sorted.Cols() <= 0 || row <= 0 || column == -1) return;
  const redraw_off still(sorted);
  const bool before = Caller != nullptr && std::exchange(Caller->IgnoreRowColChange, true);
  {
    const busy_section busy;
    sorted.set_current(1, column);
    sorted.select_to(sorted.Rows() - 1, column);
    sorted.sort(ascending ? sort_direction::ascending : sort_direction::descending);
  }
  sorted.set_current(row, column);
  if (Caller != nullptr) Caller->IgnoreRowColChange = before;
}

void dwf::Dadd(int row, int col, const value& shown) {
  flexgrid& into = *ui_->dwg;
  into.set_current(row, col);
  const std::string text = shown.is_null() ? DataWindow::null_text : to_text(shown);
  const int pixels = fontMetrics().horizontalAdvance(" " + QString::fromStdString(text));
  const int needed = pixels * twips_per_inch / logicalDpiX();
  if (needed > into.column_width(col) && needed < widest_of_dadd) into.set_column_width(col, needed);
  into.set_text(row, col, text);
}

void dwf::start_editor() {
  flexgrid& edited = *ui_->dwg;
  edited.scrollTo(edited.currentIndex());
  QRect place = edited.cell_rect(edited.row(), edited.column());
  if (!place.isValid() && place.height() <= 0) return;
  place.setWidth(qMax(place.width(), twips_to_pixels(narrowest_editor, *this)));
  ui_->Text1->setGeometry(place);
  ui_->Text1->setText(edited.text(edited.row(), edited.column()));
  edited_ = ui_->Text1->text();
  ui_->Text1->show();
  ui_->Text1->selectAll();
  ui_->Text1->setFocus();
}

void dwf::leave_editor() {
  ui_->Text1->hide();
  ui_->dwg->setFocus();
}

bool dwf::Text1_KeyDown(const QKeyEvent& event) {
  const bool enter = is_enter(event);
  if (!enter && event.key() != Qt::Key_Escape) return false;
  // A text that was left as it is keeps the bytes that it came with.
  if (enter && ui_->Text1->text() != edited_) {
    ui_->dwg->set_text(ui_->dwg->row(), ui_->dwg->column(), ui_->Text1->text());
  }
  leave_editor();
  return true;
}
