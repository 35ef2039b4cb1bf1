// Pictures for buttons, see IconStore.h.
#include "controls/IconStore.h"

#include "controls/Control.h"

#include <QPixmap>

namespace pictorel {

void IconStore::Load(int id, const QString& fileName) {
    const QPixmap picture(fileName);
    if (picture.isNull()) {
        throw ControlError("The picture file " + fileName.toStdString() + " cannot be loaded.");
    }
    icons_[id] = QIcon(fileName); // finds the denser "@2x" file by itself
}

const QIcon& IconStore::Icon(int id) const {
    const auto found = icons_.find(id);
    if (found == icons_.end()) {
        throw ControlError("There is no icon " + std::to_string(id) + ".");
    }
    return found->second;
}

} // namespace pictorel
