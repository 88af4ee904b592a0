#pragma once

#include <QString>

namespace Desk {

class ViewerDesk;

/// What a newcomer can do next with @p desk; empty once he has learned it.
QString placingHint(const ViewerDesk &desk);

/// The desk for somebody who does not see it: how many are there, and who is selected.
QString spokenText(const ViewerDesk &desk);

} // namespace Desk
