// SPDX-License-Identifier: MIT
// ovrant_ustring::Format beside the C library's formatting and a model.

#ifndef FUZZ_PLATFORM_TEXT_FORMAT_H_
#define FUZZ_PLATFORM_TEXT_FORMAT_H_

#include <string>

#include "common_stowraapi/platform/ustring.h"
#include "fuzz/support/input.h"

namespace stowra_fuzz {

// Each formats into `text`, whose content is `units` then. What is formatted, and how, comes from
// `input`: a number; a text, `argument` among others; a format that may be anything.
void FormatNumber(Input& input, ovrant::utils::ovrant_ustring& text, std::u16string& units);
void FormatText(Input& input, const ovrant::utils::ovrant_ustring& argument,
                const std::u16string& argument_units, ovrant::utils::ovrant_ustring& text,
                std::u16string& units);
void FormatAnything(Input& input, const ovrant::utils::ovrant_ustring& argument,
                    ovrant::utils::ovrant_ustring& text, std::u16string& units);

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_TEXT_FORMAT_H_
