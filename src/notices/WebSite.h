// Web links, by number.
#pragma once

#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/PushButton.h"
#include "notices/StringTable.h"

#include <cstdint>

namespace pictorel {

inline constexpr std::uint8_t kSiteLink = 1;
inline constexpr std::uint8_t kDownloadLink = 2;
inline constexpr std::uint8_t kHomePageLink = 3;
inline constexpr std::uint8_t kFirstToolLink = 4;
inline constexpr std::uint8_t kSecondToolLink = 5;

// Opens web link 1 to 7 in the person's browser; any other number opens nothing.
void OpenWebLink(std::uint8_t link, const StringTable& strings);

// The share buttons at the top right of the main window.
class ShareButtons {
  public:
    ShareButtons(const ControlArray<PushButton>& cmd_Recommend, const StringTable& strings);

  private:
    Events events_;
};

} // namespace pictorel
