// Controls of one name, addressed by index: Cmd_Panel(3).
#pragma once

#include "controls/Control.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pictorel {

// A light view on controls that the window owns. An index outside the array raises ControlError.
template <typename T>
class ControlArray {
  public:
    ControlArray() = default;
    ControlArray(std::string name, std::vector<T*> elements)
        : name_(std::move(name)), elements_(std::move(elements)) {}

    T& operator()(int index) const {
        if (index < 0 || index >= Count()) {
            throw ControlError(name_ + "(" + std::to_string(index) + "): there is no such element");
        }
        return *elements_[static_cast<std::size_t>(index)];
    }

    int Count() const { return static_cast<int>(elements_.size()); }
    auto begin() const { return elements_.begin(); }
    auto end() const { return elements_.end(); }

  private:
    std::string name_;
    std::vector<T*> elements_;
};

// Finds the window's controls by name. Asking for a name or kind that the window does not have raises
// ControlError.
class ControlRegistry {
  public:
    void Add(std::string_view name, Control& control) { controls_[std::string(name)].push_back(&control); }

    template <typename T>
    ControlArray<T> Array(const std::string& name) const {
        const auto found = controls_.find(name);
        if (found == controls_.end()) {
            throw ControlError(name + ": there is no such control");
        }
        std::vector<T*> elements;
        for (Control* const control : found->second) {
            T* const element = dynamic_cast<T*>(control);
            if (element == nullptr) {
                throw ControlError(name + ": the control is of another kind");
            }
            elements.push_back(element);
        }
        return {name, std::move(elements)};
    }

    template <typename T>
    T& Single(const std::string& name) const {
        return Array<T>(name)(0);
    }

  private:
    std::map<std::string, std::vector<Control*>> controls_;
};

} // namespace pictorel
