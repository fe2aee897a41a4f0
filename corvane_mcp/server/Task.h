#pragma once

#include <asio/awaitable.hpp>

namespace corvane {

/// A coroutine that runs on the server's pool. It does not start before it is awaited.
template <class Result>
using Task = asio::awaitable<Result>;

}  // namespace corvane
