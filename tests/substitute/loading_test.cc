// SPDX-License-Identifier: MIT
// What is loaded: the shipped library on the substitute platform, and no other platform; and what
// it exports by name.

#include <dlfcn.h>

#include <memory>
#include <string>
#include <utility>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/version.h"
#include "tests/substitute/fixture.h"
#include "tests/substitute/started.h"

namespace stowra_substitute {
namespace {

// A library that is loaded already.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const char* name) : handle_(dlopen(name, RTLD_LAZY | RTLD_NOLOAD)) {}
  ~LoadedLibrary() {
    if (handle_ != nullptr) dlclose(handle_);
  }
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  bool is_loaded() const { return handle_ != nullptr; }
  const void* Find(const std::string& symbol) const { return dlsym(handle_, symbol.c_str()); }

 private:
  void* const handle_;
};

// The file that an address was loaded from.
std::string FileOf(const void* address) {
  Dl_info info = {};
  return dladdr(address, &info) != 0 ? info.dli_fname : "";
}

TEST(LoadingTest, TheOnlyPlatformIsTheSubstitute) {
  const LoadedLibrary platform(STOWRA_PLATFORM_LIBRARY);
  ASSERT_TRUE(platform.is_loaded());
  const void* const marker = platform.Find("stowra_substitute_platform_marker");
  ASSERT_NE(marker, nullptr);
  const std::string substitute = FileOf(marker);
  EXPECT_THAT(substitute, testing::HasSubstr("/substitute/platform/"));
  for (const char* const symbol :
       {"_ZN19CNotificationCenter7DefaultEv", "_ZN6ovrant8internet12InternetData8DownloadEv",
        "_ZN6ovrant8internet20InternetDataDelegateD1Ev", "_ZN6ovrant5utils14ovrant_ustringC1Ev",
        "_ZN6ovrant13Get_IXMLInputEPKhi", "_ZN6ovrant13End_IXMLInputEPPNS_9IXMLInputE",
        "_ZN6Random8GetValueEii"}) {
    const void* const first_in_process = dlsym(RTLD_DEFAULT, symbol);
    ASSERT_NE(first_in_process, nullptr) << symbol;
    EXPECT_EQ(FileOf(first_in_process), substitute) << symbol;
    EXPECT_EQ(platform.Find(symbol), first_in_process) << symbol;
  }
}

TEST(LoadingTest, TheLibraryIsTheShippedOne) {
  const LoadedLibrary library(STOWRA_LIBRARY);
  ASSERT_TRUE(library.is_loaded());
  const void* const method =
      library.Find("_ZN6ovrant11webservices21WebServiceRequestBase18SynchronousRequestEv");
  ASSERT_NE(method, nullptr);
  EXPECT_THAT(FileOf(method), testing::HasSubstr("libCommonStowraapi."));
  EXPECT_THAT(FileOf(method), testing::Not(testing::HasSubstr("/substitute/")));
}

TEST(LoadingTest, MessageNumbersAreExported) {
  const std::pair<const char*, unsigned int> messages[] = {
      {"_ZN6ovrant11webservices13UserInfoQuery21kAsyncReturnedMessageE", 28004},
      {"_ZN6ovrant11webservices13UserInfoQuery19kAsyncFailedMessageE", 28005},
      {"_ZN6ovrant11webservices11UpdateQuery21kAsyncReturnedMessageE", 28006},
      {"_ZN6ovrant11webservices11UpdateQuery19kAsyncFailedMessageE", 28007},
      {"kExtensionStoreStatusRequestReturnedMessage", 28002},
      {"kExtensionStoreStatusRequestFailedMessage", 28003}};
  const LoadedLibrary library(STOWRA_LIBRARY);
  for (const auto& [symbol, number] : messages) {
    const auto* const exported = static_cast<const unsigned int*>(library.Find(symbol));
    ASSERT_NE(exported, nullptr) << symbol;
    EXPECT_EQ(*exported, number) << symbol;
  }
}

// The linker found them in the shipped library.
TEST(LoadingTest, NotificationNamesAreExported) {
  EXPECT_STREQ(UserInfoQuery::kAsynchReturnedNotification, "UserInfoQueryRequestReturned");
  EXPECT_STREQ(UserInfoQuery::kAsyncFailedNotification, "UserInfoQueryRequestFailed");
  EXPECT_STREQ(UserInfoQuery::kUserInfoUpdatedNotification, "UserInfoUpdated");
  EXPECT_STREQ(UpdateQuery::kAsynchReturnedNotification, "UpdateQueryReturned");
  EXPECT_STREQ(UpdateQuery::kAsyncFailedNotification, "UpdateQueryFailed");
  EXPECT_STREQ(UpdateQuery::kUpdateQuerySucceededNotification, "UpdateQueryAsyncSucceeded");
  EXPECT_STREQ(UpdateQuery::kUpdateQueryFailedNotification, "UpdateQueryAsyncFailed");
  EXPECT_STREQ(kExtensionStoreStatusRequestReturnedNotification,
               "ExtensionStoreStatusRequestReturned");
  EXPECT_STREQ(kExtensionStoreStatusRequestFailedNotification, "ExtensionStoreStatusRequestFailed");
  EXPECT_STREQ(kExtensionStoreAsynchStatusSucceededNotification,
               "ExtensionStoreAsyncStatusSucceeded");
  EXPECT_STREQ(kExtensionStoreAsynchStatusFailedNotification, "ExtensionStoreAsyncStatusFailed");
}

// The same number stands in both.
TEST(LoadingTest, VersionSymbolsAgree) {
  const std::string text(reinterpret_cast<const char*>(CommonStowraapiVersionString));
  EXPECT_EQ(text.substr(0, 4), "@(#)");
  EXPECT_THAT(text, testing::HasSubstr("CommonStowraapi"));
  EXPECT_THAT(text, testing::HasSubstr("common_stowraapi"));
  const std::string number = std::to_string(static_cast<long>(CommonStowraapiVersionNumber));
  EXPECT_THAT(text, testing::HasSubstr("-" + number));
}

}  // namespace
}  // namespace stowra_substitute
