#pragma once

#include <QHeaderView>

// The fixed column of a flexgrid: as wide as it is told, without asking its first and last hundred rows for their width
// whenever rows come to it.
class row_header : public QHeaderView {
  Q_OBJECT

 public:
  explicit row_header(QWidget* parent) : QHeaderView(Qt::Vertical, parent) {
    setSectionsClickable(true);
    setHighlightSections(true);
    setSectionResizeMode(Fixed);
  }

  void set_width(int pixels) {
    if (pixels == width_) return;
    width_ = pixels;
    updateGeometry();
    emit geometriesChanged();
  }
  [[nodiscard]] QSize sizeHint() const override { return {width_, 0}; }

 private:
  int width_ = 0;
};
