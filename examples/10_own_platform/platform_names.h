// SPDX-License-Identifier: MIT
// What libCommonStowraapi takes from its platform: 45 functions and one virtual table. The public
// headers in common_stowraapi/platform/ say what each does. A host that brings its own platform
// defines these names in a library of the name and SONAME of libCommonStowraapiPlatform, and uses
// the headers as they are. The members' types and order stay, since they are compiled into both.

#ifndef EXAMPLES_10_OWN_PLATFORM_PLATFORM_NAMES_H_
#define EXAMPLES_10_OWN_PLATFORM_PLATFORM_NAMES_H_

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/random.h"
#include "common_stowraapi/platform/url.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"

// Text (text.cc):
//   ovrant::utils::ovrant_ustring::ovrant_ustring()
//   ovrant::utils::ovrant_ustring::ovrant_ustring(char const*)
//   ovrant::utils::ovrant_ustring::ovrant_ustring(char const*, unsigned long)
//   ovrant::utils::ovrant_ustring::ovrant_ustring(ovrant::utils::ovrant_ustring const&)
//   ovrant::utils::ovrant_ustring::ovrant_ustring(wchar_t const*)
//   ovrant::utils::ovrant_ustring::~ovrant_ustring()
//   ovrant::utils::ovrant_ustring::operator=(char const*)
//   ovrant::utils::ovrant_ustring::operator=(ovrant::utils::ovrant_ustring const&)
//   ovrant::utils::ovrant_ustring::operator+=(ovrant::utils::ovrant_ustring const&)
//   ovrant::utils::ovrant_ustring::FormatArguments(...)
//   ovrant::utils::ovrant_ustring::Left(int) const
//   ovrant::utils::ovrant_ustring::Mid(int, int) const
//   ovrant::utils::ovrant_ustring::Right(int) const
//   ovrant::utils::ovrant_ustring::TokenizeToVector(ovrant::utils::ovrant_ustring const&) const
//   ovrant::utils::ovrant_ustring::assign_utf8(char const*)
//   ovrant::utils::ovrant_ustring::at(unsigned long) const
//   ovrant::utils::ovrant_ustring::clear()
//   ovrant::utils::ovrant_ustring::compare(ovrant::utils::ovrant_ustring const&) const
//   ovrant::utils::ovrant_ustring::compare_nocase(ovrant::utils::ovrant_ustring const&) const
//   ovrant::utils::ovrant_ustring::empty() const
//   ovrant::utils::ovrant_ustring::find(ovrant::utils::ovrant_ustring const&, unsigned long) const
//   ovrant::utils::ovrant_ustring::length() const
//   ovrant::utils::ovrant_ustring::replace_all(...)
//   ovrant::utils::ovrant_ustring::to_float() const
//   ovrant::utils::ovrant_ustring::to_int() const
//   ovrant::utils::ovrant_ustring::utf8[abi:cxx11]() const
//   ovrant::utils::GetFileName(ovrant::utils::ovrant_ustring const&, bool)
//
// Transport (transport.cc). Destructors that are only called through virtual tables come too:
//   ovrant::internet::InternetData::~InternetData()
//   ovrant::internet::InternetData::Download()
//   ovrant::internet::InternetData::DownloadWithDelegate(...)
//   ovrant::internet::InternetData::SendAndRead(...)
//   ovrant::internet::InternetData::SetValueForHTTPSendHeaders(...)
//   ovrant::internet::InternetData::UploadWithDelegate(...)
//   ovrant::internet::InternetData::set_send_data(unsigned char const*, unsigned long)
//   ovrant::internet::InternetDataDelegate::InternetDataDelegate(...)
//   vtable for ovrant::internet::InternetData
//
// Notifications (notifications.cc):
//   CNotificationCenter::AddObserver(char const*, ovrant::IObserver*)
//   CNotificationCenter::Default()
//   CNotificationCenter::RemoveObserver(ovrant::IObserver*)
//   CNotificationCenter::SendNotification(char const*, void*)
//
// URLs, random numbers and XML (small_parts.cc):
//   ovrant::internet::URL::URL(ovrant::utils::ovrant_ustring)
//   ovrant::internet::URL::getValueForExtraInfoKey(...)
//   Random::GetValue(int, int)
//   Random::SetSeed(unsigned int)
//   ovrant::Get_IXMLInput(unsigned char const*, int)
//   ovrant::End_IXMLInput(ovrant::IXMLInput**)

#endif  // EXAMPLES_10_OWN_PLATFORM_PLATFORM_NAMES_H_
