// Pictures for buttons, loaded once and kept under whole-number ids.
#pragma once

#include <QIcon>
#include <QString>

#include <map>

namespace pictorel {

class IconStore {
  public:
    // Loads the picture for the image state "normal", its "@2x" companion with it for dense screens. Throws
    // ControlError naming the file where it is missing or no picture.
    void Load(int id, const QString& fileName);

    // Throws ControlError for an id that was not loaded.
    const QIcon& Icon(int id) const;

  private:
    std::map<int, QIcon> icons_;
};

} // namespace pictorel
