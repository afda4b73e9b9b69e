// Sanitizers make everything several times as slow: comparisons over many random models then take fewer of them, and the
// release tests take them all.
#pragma once

#ifdef __SANITIZE_ADDRESS__
inline constexpr bool underSanitizers = true;
#else
inline constexpr bool underSanitizers = false;
#endif

/// A sixth of it under sanitizers.
template <class Number> constexpr Number fewerUnderSanitizers(Number number)
{
    return underSanitizers ? number / 6 : number;
}
