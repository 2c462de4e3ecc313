// Making a text fit for RapidJSON to parse.

#ifndef COMMON_STOWRAAPI_JSON_TEXT_CHECK_H_
#define COMMON_STOWRAAPI_JSON_TEXT_CHECK_H_

#include <string>

namespace ovrant::json {

// Cuts `text` at its first NUL and pads it with what the parser's steps of sixteen bytes may read.
// False, with a text that must not be parsed, when it
// - has 4 GiB or more,
// - begins with anything but an object or array,
// - has more than `max_depth` of them inside each other: the parser recurses,
// - has a string that does not end, or has a control character in it: of these the parser's steps
//   let 1A to 1F pass,
// - or has a hundred million zeros or more behind a decimal point.
// What else is wrong with it is left to the parser. An exponent of less than -999999999, which
// makes any number 0, becomes that one: the parser counts in int, and looks powers of ten up by
// the result.
bool PrepareText(std::string& text, unsigned int max_depth);

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_TEXT_CHECK_H_
