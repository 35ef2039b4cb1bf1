// An open descriptor that is closed with its owner.
#pragma once

#include <unistd.h>

#include <utility>

namespace pictorel {

class Descriptor {
  public:
    explicit Descriptor(int number = -1) noexcept : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    int Number() const noexcept { return number_; }
    bool IsOpen() const noexcept { return number_ >= 0; }

    // False where the system only now says that something written through it is lost.
    bool Close() noexcept {
        const int number = std::exchange(number_, -1);
        return number < 0 || ::close(number) == 0;
    }

  private:
    int number_;
};

} // namespace pictorel
