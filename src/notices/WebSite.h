// Web links, by number.
#pragma once

#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/PushButton.h"
#include "controls/WebBrowser.h"
#include "notices/StringTable.h"

#include <cstdint>

namespace pictorel {

inline constexpr std::uint8_t kSiteLink = 1;
inline constexpr std::uint8_t kHomePageLink = 3;

// Opens web link 1 to 7 in the person's browser; any other number opens nothing.
void OpenWebLink(std::uint8_t link, const StringTable& strings);

// Whether a newer version than the running one is published. The list of versions is not fetched yet, so none
// is known of.
bool CheckForUpdate(WebBrowser& browser);

// The share buttons at the top right of the main window.
class ShareButtons {
  public:
    ShareButtons(const ControlArray<PushButton>& cmd_Recommend, const StringTable& strings);

  private:
    Events events_;
};

} // namespace pictorel
