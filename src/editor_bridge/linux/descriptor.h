#pragma once

#include <utility>

#include <unistd.h>

namespace orbinex {

/// A file descriptor that is closed with its owner; -1 for none.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    ~Descriptor() { close(); }

    void close() {
        if (number_ >= 0) ::close(std::exchange(number_, -1));
    }
    [[nodiscard]] int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

  private:
    int number_ = -1;
};

}  // namespace orbinex
