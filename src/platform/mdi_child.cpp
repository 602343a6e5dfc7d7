#include "platform/mdi_child.h"

#include <QMdiArea>
#include <QMdiSubWindow>

void activate_mdi_child(QWidget& window) {
  auto* child = qobject_cast<QMdiSubWindow*>(window.parentWidget());
  if (child == nullptr || child->mdiArea() == nullptr) return;
  if (child->isMinimized()) child->showNormal();
  child->mdiArea()->setActiveSubWindow(child);
  window.setFocus();
}
