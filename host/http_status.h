// SPDX-License-Identifier: MIT
// Numbers of HTTP (RFC 9110, 15) that several commands look at.

#ifndef HOST_HTTP_STATUS_H_
#define HOST_HTTP_STATUS_H_

namespace stowra {

inline constexpr int kHttpOk = 200;

}  // namespace stowra

#endif  // HOST_HTTP_STATUS_H_
