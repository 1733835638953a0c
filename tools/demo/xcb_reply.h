#pragma once

#include <cstdlib>
#include <memory>

namespace orbinex::demo {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

/// A reply of the X server, or nothing when it reported an error or has gone.
template <class Type>
using Reply = std::unique_ptr<Type, FreeReply>;

template <class Type>
Reply<Type> adopt(Type* reply) {
    return Reply<Type>(reply);
}

}  // namespace orbinex::demo
