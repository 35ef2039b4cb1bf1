// Copies a file as a disk would have kept it.
#pragma once

#include <QString>
#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

namespace pictorel::test {

// With the time of its last change.
inline void CopyWithTimes(const QString& from, const QString& to) {
    const std::filesystem::path source(from.toStdString());
    const std::filesystem::path target(to.toStdString());
    std::error_code error;
    std::filesystem::copy_file(source, target, error);
    EXPECT_FALSE(error) << error.message();
    std::filesystem::last_write_time(target, std::filesystem::last_write_time(source), error);
    EXPECT_FALSE(error) << error.message();
}

} // namespace pictorel::test
