// Web links, see WebSite.h.
#include "notices/WebSite.h"

#include "platform/ShellOpen.h"

#include <array>

namespace pictorel {
namespace {

constexpr int kLinks = 7;
constexpr std::array<std::uint8_t, 2> kShareLinks{7, 6}; // of Cmd_Recommend(0) and (1)

} // namespace

void OpenWebLink(std::uint8_t link, const StringTable& strings) {
    if (link >= 1 && link <= kLinks) {
        ShellOpen(strings.Entry(static_cast<int>(Text::FirstLink) + link - 1));
    }
}

ShareButtons::ShareButtons(const ControlArray<PushButton>& cmd_Recommend, const StringTable& strings) {
    for (std::size_t i = 0; i < kShareLinks.size(); ++i) {
        events_.On(cmd_Recommend(static_cast<int>(i)), &PushButton::clicked,
                   [&strings, link = kShareLinks[i]] { OpenWebLink(link, strings); });
    }
}

} // namespace pictorel
