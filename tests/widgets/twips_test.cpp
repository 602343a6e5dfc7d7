#include "widgets/twips.h"

#include <gtest/gtest.h>

#include <QWidget>

namespace {

TEST(twips, are_a_1440th_of_an_inch) {
  const QWidget widget;
  EXPECT_EQ(twips_to_pixels(1440, widget), widget.logicalDpiX());
  EXPECT_EQ(twips_to_pixels(8200, widget), 8200 * widget.logicalDpiX() / 1440);
  EXPECT_EQ(twips_to_pixels(0, widget), 0);
}

}  // namespace
