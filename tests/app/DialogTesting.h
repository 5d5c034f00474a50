#pragma once

#include <QAbstractButton>
#include <QTest>

namespace tarabix::test {

// A left click on the button's indicator: check boxes and radio buttons take clicks on their box
// and caption only, not on the empty width a layout gives them.
inline void click(QAbstractButton* button)
{
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
}

}  // namespace tarabix::test
