// SPDX-License-Identifier: MIT
// Includes every public header. The build installs the headers in this list.

#ifndef COMMON_STOWRAAPI_COMMON_STOWRAAPI_H_
#define COMMON_STOWRAAPI_COMMON_STOWRAAPI_H_

#include "common_stowraapi/content/content_helpers.h"
#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/content_schema.h"
#include "common_stowraapi/content/item_values.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/payload_source.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/export.h"
#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "common_stowraapi/platform/body_sink.h"
#include "common_stowraapi/platform/body_source.h"
#include "common_stowraapi/platform/file_sink.h"
#include "common_stowraapi/platform/file_source.h"
#include "common_stowraapi/platform/format_argument.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/memory_sink.h"
#include "common_stowraapi/platform/memory_source.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "common_stowraapi/platform/random.h"
#include "common_stowraapi/platform/transfer_types.h"
#include "common_stowraapi/platform/url.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"
#include "common_stowraapi/request/web_service_request_base.h"
#include "common_stowraapi/services/extension_store_item.h"
#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "common_stowraapi/version.h"

#endif  // COMMON_STOWRAAPI_COMMON_STOWRAAPI_H_
