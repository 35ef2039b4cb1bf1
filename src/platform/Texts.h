// Texts of the tables as texts of the window.
#pragma once

#include <QString>

#include <string_view>

namespace pictorel {

inline QString FromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace pictorel
