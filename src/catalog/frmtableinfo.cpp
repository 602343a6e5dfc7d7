#include "catalog/frmtableinfo.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QStyle>

#include "base/user_interface.h"
#include "catalog/grid_rows.h"
#include "platform/mdi_child.h"
#include "shell/session.h"
#include "ui_frmtableinfo.h"
#include "widgets/twips.h"

namespace {

constexpr int width_in_twips = 9600;
constexpr int height_in_twips = 4800;

void show_rows(flexgrid& grid, std::span<const shown_column> titles, const catalog_rows& rows) {
  const redraw_off still(grid);
  grid.SetFixedRows(0);
  grid.SetFixedCols(0);
  grid.SetRows(1);
  grid.SetCols(static_cast<int>(titles.size()));
  put_titles(grid, titles);
  add_rows(grid, rows);
  if (!rows.empty()) grid.SetFixedRows(1);
  fit_column_widths(grid);
}

}  // namespace

frmTableInfo::frmTableInfo() : ui_(std::make_unique<Ui::frmTableInfo>()) {
  ui_->setupUi(this);
  resize(twips_to_pixels(width_in_twips, *this), twips_to_pixels(height_in_twips, *this));
  setFocusProxy(ui_->Grid1);
  connect(ui_->Command1, &QPushButton::clicked, this, &frmTableInfo::Command1_Click);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, const QWidget* now) {
    if (now != nullptr && isAncestorOf(now)) Form_GotFocus();
  });
  Form_Load();
}

frmTableInfo::~frmTableInfo() = default;

void frmTableInfo::Form_Load() {
  show_rows(*ui_->Grid1, primary_key_shown, {});
  show_rows(*ui_->Grid2, foreign_keys_shown, {});
  show_rows(*ui_->Grid3, indexes_shown, {});
}

void frmTableInfo::Form_Activate() { refresh(); }
void frmTableInfo::Form_GotFocus() { refresh(); }

void frmTableInfo::Form_Unload() {
  unloaded_ = true;
  statement_.Kill();
}

void frmTableInfo::Command1_Click() { parentWidget() != nullptr ? parentWidget()->close() : close(); }

void frmTableInfo::closeEvent(QCloseEvent* event) {
  Form_Unload();
  event->accept();
}

bool frmTableInfo::event(QEvent* event) {
  const bool handled = QWidget::event(event);
  if (event->type() == QEvent::WindowActivate) Form_Activate();
  return handled;
}

void frmTableInfo::refresh() {
  const table_key wanted{.qualifier = qualifier, .library = library, .table = table};
  if (wanted == shown_ || unloaded_) return;
  // A message that is closed activates the window: by then nothing is left to be asked.
  shown_ = wanted;
  if (statement_.Free() && !statement_.Make(session::g_con)) {
    session::g_con.Errd();
    return;
  }
  catalog_reader catalog(statement_);
  {
    const busy_section busy;
    show_rows(*ui_->Grid1, primary_key_shown, catalog.primary_key(wanted));
    show_rows(*ui_->Grid2, foreign_keys_shown, catalog.foreign_keys(wanted));
    show_rows(*ui_->Grid3, indexes_shown, catalog.indexes(wanted));
    share_width();
  }
  catalog.tell_failures();
}

// Each grid gets a share of the width by what its columns take. For its first table the window grows to show all,
// where the frame has room; afterwards its width is the user's.
void frmTableInfo::share_width() {
  QList<int> wanted;
  int total = width() - ui_->views->width() + (ui_->views->count() - 1) * ui_->views->handleWidth();
  for (const flexgrid* grid : {ui_->Grid1, ui_->Grid2, ui_->Grid3}) {
    wanted += grid->horizontalHeader()->length() + 2 * grid->frameWidth() +
              grid->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, grid);
    total += wanted.last();
  }
  auto* child = qobject_cast<QMdiSubWindow*>(parentWidget());
  if (!grown_ && child != nullptr && !child->isMaximized()) {
    grown_ = true;
    const int room = child->mdiArea()->viewport()->width() - child->x();
    const int wide_enough = qMin(room, total + child->width() - width());
    if (wide_enough > child->width()) child->resize(wide_enough, child->height());
  }
  ui_->views->setSizes(wanted);
}

void describe_table(mdi_host& host, const table_key& table) {
  static QPointer<frmTableInfo> open;
  const bool reused = !open.isNull() && !open->unloaded();
  if (!reused) open = new frmTableInfo;
  const QPointer<frmTableInfo> window = open;
  // It is shown before it knows its table: a message of its refresh may close it, which show_child must not meet.
  if (reused) {
    activate_mdi_child(*window);
  } else {
    host.show_child(window);
  }
  window->qualifier = table.qualifier;
  window->library = table.library;
  window->table = table.table;
  window->setWindowTitle(
      QString::fromStdString("Table Information: " + table.qualifier + "." + table.library + "." + table.table));
  window->refresh();
}
