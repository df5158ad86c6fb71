// The bodies of {fmt}, compiled once. Where it is used from headers alone, every source that formats a text compiles
// all of them, which was most of the time of an optimised build.
#include <fmt/format-inl.h>

namespace fmt::detail {

// What format.h declares as compiled elsewhere, and what it uses without a body.
template auto dragonbox::to_decimal(float) noexcept -> dragonbox::decimal_fp<float>;
template auto dragonbox::to_decimal(double) noexcept -> dragonbox::decimal_fp<double>;
template auto thousands_sep_impl<char>(locale_ref) -> thousands_sep_result<char>;
template auto thousands_sep_impl<wchar_t>(locale_ref) -> thousands_sep_result<wchar_t>;
template auto decimal_point_impl(locale_ref) -> char;
template auto decimal_point_impl(locale_ref) -> wchar_t;
template auto locale_ref::get<std::locale>() const -> std::locale;
template void buffer<char>::append(const char*, const char*);
template void vformat_to(buffer<char>&, string_view, basic_format_args<FMT_BUFFER_CONTEXT(char)>, locale_ref);

}  // namespace fmt::detail
