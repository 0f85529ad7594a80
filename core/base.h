// SPDX-License-Identifier: Apache-2.0
// What every file of the library starts from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <zeti/zeti.h>

namespace zeti {

using std::ptrdiff_t;
using std::size_t;

template <class T>
inline constexpr bool is_complex = std::is_same_v<T, Zet16sc> || std::is_same_v<T, Zet32sc> || std::is_same_v<T, Zet32fc>;

// The real sample type under a sample type: Zet16s for Zet16sc, T itself for a real T.
template <class T> struct RealOf { using type = T; };
template <> struct RealOf<Zet16sc> { using type = Zet16s; };
template <> struct RealOf<Zet32sc> { using type = Zet32s; };
template <> struct RealOf<Zet32fc> { using type = Zet32f; };
template <class T> using Real = typename RealOf<T>::type;

template <class T> inline constexpr T min_of = std::numeric_limits<T>::min();
template <class T> inline constexpr T max_of = std::numeric_limits<T>::max();

} // namespace zeti
