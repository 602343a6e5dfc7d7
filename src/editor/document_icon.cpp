#include "editor/document_icon.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

QIcon document_icon(bool unsaved) {
  QIcon plain = QGuiApplication::windowIcon();
  if (plain.isNull()) plain = QApplication::style()->standardIcon(QStyle::SP_FileIcon);
  if (!unsaved) return plain;
  QIcon dotted;
  for (const int size : {16, 24, 32, 48, 64}) {
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    plain.paint(&painter, 0, 0, size, size);
    const qreal dot = size * 0.55;
    // Red with a white rim: seen on a light and on a dark title bar.
    painter.setPen(QPen(Qt::white, size / 16.0));
    painter.setBrush(QColor(0xd0, 0x20, 0x20));
    painter.drawEllipse(QRectF(size - dot - size / 32.0, size - dot - size / 32.0, dot, dot));
    painter.end();
    dotted.addPixmap(picture);
  }
  return dotted;
}
