#pragma once

#include <memory>
#include <utility>

namespace orbinex {

/// Lets delayed or foreign work hold its owner weakly: a guarded callable does nothing once the owner's
/// Lifetime is gone. Declare it as the last member, so that it ends before anything that the work touches.
class Lifetime {
  public:
    Lifetime() : token_(std::make_shared<char>()) {}
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;
    ~Lifetime() = default;

    /// Wraps a callable without a result. Main thread only, like everything that it protects.
    template <class Function>
    [[nodiscard]] auto guard(Function function) const {
        return [token = std::weak_ptr<char>(token_),
                function = std::move(function)]<class... Arguments>(Arguments&&... arguments) mutable {
            if (!token.expired()) function(std::forward<Arguments>(arguments)...);
        };
    }

  private:
    std::shared_ptr<char> token_;
};

}  // namespace orbinex
