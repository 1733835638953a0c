#pragma once

#include <optional>
#include <string>

#include <stdlib.h>

namespace orbinex::test {

/// A variable of this process's environment, as it was before again with this object's end.
class EnvironmentVariable {
  public:
    /// Nothing: it is not set.
    EnvironmentVariable(const char* name, const std::optional<std::string>& value) : name_(name) {
        if (const char* const before = ::getenv(name)) before_ = before;
        set(value);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable() { set(before_); }

  private:
    void set(const std::optional<std::string>& value) const {
        if (value) {
            ::setenv(name_, value->c_str(), 1);
        } else {
            ::unsetenv(name_);
        }
    }

    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace orbinex::test
