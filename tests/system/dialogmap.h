#pragma once

#include <QRect>

/*!
 * Where the buttons of the dialogs are, in design pixels of a dialog's contents: to be multiplied
 * by the screen's scale. Drawn after the dialogs' descriptions.
 */
namespace DialogMap {

namespace Filter {
constexpr QRect names(70, 8, 40, 12); //!< a bare spot in the uppermost row of the list
constexpr QRect whiteList(150, 24, 81, 20);
constexpr QRect ok(142, 90, 110, 22);
constexpr QRect cancel(142, 129, 110, 22);
constexpr QRect addSentence(142, 168, 110, 38);
constexpr QRect deleteSentence(142, 224, 110, 38);
} // namespace Filter

namespace Smart {
constexpr QRect off(22, 34, 60, 12);
} // namespace Smart

namespace Service {
constexpr QRect table(10, 10, 275, 385);
constexpr QRect clear(290, 10, 91, 40);
constexpr QRect aisTest(290, 60, 91, 40);
constexpr QRect firmware(290, 110, 91, 40);
constexpr QRect lock(290, 160, 91, 40);
constexpr QRect changeMode(290, 310, 91, 40);
constexpr QRect exit(290, 360, 91, 37);
constexpr QRect chipId(10, 400, 61, 20);
constexpr QRect chipText(72, 402, 300, 16);
} // namespace Service

namespace Password {
constexpr QRect first(150, 10, 191, 27);
constexpr QRect second(150, 45, 191, 27);
} // namespace Password

namespace AisTest {
constexpr QRect table(3, 4, 600, 189);
constexpr QRect blank(6, 4, 12, 189); //!< left of what stands in the first column
constexpr int columns = 8;
constexpr int own = 1; //!< these three: the columns of buttons
constexpr int targets = 4;
constexpr int alarms = 7;
//! The columns share the table evenly.
constexpr QRect columnHead(int column)
{
    constexpr int left = 3;
    constexpr int width = 600;
    return QRect(left + width * column / columns, 4, width / columns, 30);
}
} // namespace AisTest

namespace TargetList {
constexpr QRect table(2, 4, 350, 425);
constexpr QRect blank(336, 4, 10, 425); //!< right of the ranges
constexpr QRect heads(26, 4, 320, 18);
constexpr QRect nameHead(140, 8, 60, 14);
constexpr QRect names(140, 30, 60, 395); //!< a part of each
constexpr int nameColumn = 1;
} // namespace TargetList

namespace TargetInfo {
constexpr QRect table(4, 4, 381, 580);
constexpr QRect blank(368, 4, 8, 580); //!< right of the values
constexpr int valueColumn = 1;
constexpr int nameRow = 3;
constexpr int ageRow = 18;
constexpr int rowCount = 19;
} // namespace TargetInfo

namespace AlarmList {
constexpr QRect blank(606, 4, 12, 210); //!< right of the texts
} // namespace AlarmList

} // namespace DialogMap
