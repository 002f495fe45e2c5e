#pragma once

#include <Kelocontrols/RuntimeError.h>

#include <utility>

namespace KeloTest {

/// The number of the Kelocontrols::RuntimeError that `call` raises, or 0 when it raises none.
template<typename Call>
int errorNumberOf(Call &&call)
{
    try {
        std::forward<Call>(call)();
    } catch (const Kelocontrols::RuntimeError &error) {
        return error.number();
    }
    return 0;
}

} // namespace KeloTest
