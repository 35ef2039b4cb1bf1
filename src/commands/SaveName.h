// Under which name, and in which format, Save proposes the open picture.
#pragma once

#include <QString>

namespace pictorel {

struct SaveProposal {
    QString name;        // with an extension that says its format
    int filterIndex = 1; // of kSaveFilter, from 1
};

// The picture's own name and format where that can be written, otherwise its name as a JPEG.
SaveProposal ProposeSave(const QString& pictureName);

// Whether the name ends as the Open dialog knows pictures' names to end.
bool EndsAsPicture(const QString& fileName);

} // namespace pictorel
