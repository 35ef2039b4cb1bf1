// What the version list says is new.
#include "notices/UpdateCheck.h"

#include <gtest/gtest.h>

namespace pictorel {
namespace {

struct NotesCase {
    const char* page;
    const char* version;
    const char* notes; // "@" stands for what begins an item's line
};

TEST(UpdateNotes, ListWhatIsNewerThanTheRunningVersion) {
    const QString item = QString(17, u' ') + QStringLiteral("- ");
    for (const NotesCase& c : {
             NotesCase{"2.1/Faster preview/New Halftone effect/\r\n2.0/First release/", "2.0",
                       " Version 2.1\r\n@Faster preview\r\n@New Halftone effect\r\n\r\n\r\n"},
             {"1.9/Old/", "2.0", ""},
             {"2.0/Same/", "2.0", ""},
             {"2.1/Fix", "2.0", " Version 2.1\r\n\r\n"},
             {"2.10/Lower than it looks/", "2.9", ""},
             {"Welcome\r\n\r\n2.1/a/", "2.0", " Version 2.1\r\n@a\r\n\r\n"},
             {"2.1/New item/\r\nRead more/below", "2.0", ""},
             {"2.1/New item/\r\n/", "2.0", ""},
             {"nan/x/", "2.0", ""},
             {"inf/x/", "2.0", ""},
             {"2.1/a/", "not a version", ""},
             {"No version here", "2.0", ""},
         }) {
        EXPECT_EQ(BuildUpdateNotes(c.page, c.version), QString(c.notes).replace(u'@', item)) << c.page;
    }
}

} // namespace
} // namespace pictorel
