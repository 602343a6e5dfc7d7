#include "platform/help_viewer.h"

#include <QPointer>
#include <QTextBrowser>
#include <QUrl>

#include "widgets/twips.h"

void show_help_contents(QWidget* owner) {
  static QPointer<QTextBrowser> viewer;
  if (viewer.isNull()) {
    viewer = new QTextBrowser(owner);
    viewer->setWindowFlags(Qt::Window);
    viewer->setAttribute(Qt::WA_DeleteOnClose);
    viewer->setWindowTitle("Sorvane Help");
    viewer->setOpenExternalLinks(true);
    viewer->setSource(QUrl("qrc:/help/contents.html"));
    viewer->document()->setDocumentMargin(twips_to_pixels(240, *viewer));
    viewer->resize(twips_to_pixels(9600, *viewer), twips_to_pixels(8400, *viewer));
  }
  viewer->show();
  viewer->raise();
  viewer->activateWindow();
}
