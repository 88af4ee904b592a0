#pragma once

#include <QJsonArray>
#include <QList>

/// The events of a stage's screens: which sequences others may start, and who does.
namespace Stage::StageLinks {

/// @p events, changed such that one of them lists and opens sequence @p number. An event without a
/// list is not enough: it opens the first sequences, as many as the screen has valid contents.
QJsonArray opened(QJsonArray events, int number);

/// The other screens with an event for sequence @p number of the screen, in the list's order.
QList<int> linkingScreens(const QJsonArray &screens, int screenId, int number);

/// @p screens, changed such that another one links to sequence @p number of the screen, when none
/// does, as it does to the nearest sequence before. Unchanged when there is no other screen.
QJsonArray linked(QJsonArray screens, int screenId, int number);

} // namespace Stage::StageLinks
