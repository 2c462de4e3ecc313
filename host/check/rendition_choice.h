// SPDX-License-Identifier: MIT
// Explains which file of a model is offered for download.

#ifndef HOST_CHECK_RENDITION_CHOICE_H_
#define HOST_CHECK_RENDITION_CHOICE_H_

#include <string>
#include <vector>

#include "host/check/check_report.h"
#include "host/check/watched_xml.h"

namespace stowra {

// The Media RSS contents that a model's Load has looked up, in their order. Each says why it was
// chosen or not. The host opens model files up to `max_qmf_version`.
std::vector<CheckedRendition> ExplainRenditions(const std::vector<XmlLookup>& lookups,
                                                int max_qmf_version);

}  // namespace stowra

#endif  // HOST_CHECK_RENDITION_CHOICE_H_
