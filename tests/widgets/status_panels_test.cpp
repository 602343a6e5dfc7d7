#include "widgets/status_panels.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>

namespace {

TEST(status_panels_test, keep_their_texts_and_tooltips) {
  status_panels bar;
  bar.add_panel("Status:", "the phase", 1);
  bar.add_panel("0.00000", "seconds", 0);
  EXPECT_EQ(bar.count(), 2);
  EXPECT_EQ(bar.text(1) + bar.text(2), "Status:0.00000");
  EXPECT_EQ(bar.label(2)->toolTip(), "seconds");
  bar.set_text(2, "<b>12</b> & 5");
  EXPECT_EQ(bar.text(2), "<b>12</b> & 5");
  EXPECT_EQ(bar.label(2)->textFormat(), Qt::PlainText) << "a text of a driver is no markup";
}

TEST(status_panels_test, a_panel_of_figures_never_shrinks_and_a_sharing_one_is_cut_to_its_room) {
  status_panels bar;
  bar.add_panel("Status:", {}, 1);
  bar.add_panel("0", {}, 0);
  bar.resize(400, bar.sizeHint().height());
  bar.show();
  QApplication::processEvents();
  bar.set_text(2, "1234567890");
  QApplication::processEvents();
  const int wide = bar.label(2)->width();
  EXPECT_GE(wide, bar.label(2)->fontMetrics().horizontalAdvance("1234567890"));
  bar.set_text(2, "0");
  QApplication::processEvents();
  EXPECT_EQ(bar.label(2)->width(), wide);

  const QString long_text = QString("a long text that no bar of this width has room for ").repeated(5);
  bar.set_text(1, long_text);
  QApplication::processEvents();
  EXPECT_EQ(bar.text(1), long_text);
  EXPECT_TRUE(bar.label(1)->text().endsWith(QChar(0x2026))) << bar.label(1)->text().toStdString();
  EXPECT_LE(bar.width(), 400) << "it does not push the window wider";
  bar.resize(6000, bar.height());
  QApplication::processEvents();
  EXPECT_EQ(bar.label(1)->text(), long_text);
}

}  // namespace
