// SPDX-License-Identifier: MIT
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>

#include <filesystem>
#include <memory>

#include "emulator/file_descriptor.h"
#include "tests/emulator/child_program.h"
#include "tests/emulator/http_client.h"

namespace stowra_emulator {
namespace {

EmulatorOptions WithTls() {
  EmulatorOptions options;
  options.use_tls = true;
  return options;
}

class TlsTest : public testing::Test {
 protected:
  TlsTest() { client_.set_ca_cert_path(emulator_.ca_file()); }

  const Emulator emulator_{WithTls()};
  httplib::Client client_ = PatientClient(emulator_.url());
};

TEST_F(TlsTest, ClientThatTrustsTheCaFileIsServed) {
  EXPECT_THAT(emulator_.url(), StartsWith("https://127.0.0.1:"));
  EXPECT_THAT(ResponseOf(client_.Get("/user-info")).body, HasSubstr("u-1001"));
  httplib::Client by_name = PatientClient("https://localhost:" + std::to_string(emulator_.port()));
  by_name.set_ca_cert_path(emulator_.ca_file());
  EXPECT_TRUE(by_name.Get("/user-info"));
}

TEST_F(TlsTest, OtherClientsRefuseTheCertificate) {
  const httplib::Result result = PatientClient(emulator_.url()).Get("/user-info");
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error(), httplib::Error::SSLServerVerification);
}

TEST_F(TlsTest, AddressesInAnswersAreSecure) {
  EXPECT_THAT(ResponseOf(client_.Get("/search?count=1")).body,
              HasSubstr("href=\"https://127.0.0.1:" + std::to_string(emulator_.port())));
}

TEST_F(TlsTest, LargeBodiesPassBothWays) {
  std::string bytes(3 << 20, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * i >> 8);
  const auto form = FormOf("Large", bytes, "application/octet-stream");
  ResponseOf(client_.Post("/upload", form), 201);
  EXPECT_TRUE(ResponseOf(client_.Get("/download?mid=m-1101&rtyp=o")).body == bytes);
}

TEST_F(TlsTest, TakesFaults) {
  ResponseOf(client_.Get("/update?fault=status:503"), 503);
  EXPECT_FALSE(client_.Get("/update?fault=truncate"));
  EXPECT_FALSE(client_.Get("/update?fault=reset"));
  ResponseOf(client_.Get("/update?fault=drip:0"));
}

TEST_F(TlsTest, PlainClientIsTurnedAway) {
  RawClient plain(emulator_.port());
  plain.Send("GET /user-info HTTP/1.1\r\n\r\n");
  EXPECT_THAT(plain.ReadToEnd(), Not(HasSubstr("HTTP/1.1 200")));
  ResponseOf(client_.Get("/user-info"));
}

TEST(TlsStopTest, StopsDuringHandshakeAndStall) {
  auto emulator = std::make_unique<Emulator>(WithTls());
  const std::string ca_file = emulator->ca_file();
  EXPECT_TRUE(std::filesystem::exists(ca_file));
  RawClient silent(emulator->port());
  RawClient half(emulator->port());
  half.Send("\x16\x03\x01");
  EXPECT_LT(TimeOf([&emulator] { emulator.reset(); }), kPatience);
  EXPECT_FALSE(std::filesystem::exists(ca_file));
}

TEST(TlsProgramTest, PrintsAddressThenCaFile) {
  ChildProgram program({"--tls", "--quiet"});
  const std::string url = program.ReadLine();
  EXPECT_THAT(url, StartsWith("https://127.0.0.1:"));
  const std::string ca_file = program.ReadLine();
  httplib::Client client = PatientClient(url);
  client.set_ca_cert_path(ca_file);
  ResponseOf(client.Get("/user-info"));
  EXPECT_EQ(program.EndBy(SIGTERM), 0);
  EXPECT_FALSE(std::filesystem::exists(ca_file));
}

void ExpectServedOn(const char* address, const char* in_url) {
  EmulatorOptions options;
  options.address = address;
  const Emulator emulator(options);
  EXPECT_THAT(emulator.url(), StartsWith(std::string("http://") + in_url + ":"));
  ResponseOf(PatientClient(emulator.url()).Get("/user-info"));
}

TEST(ListenTest, ServesOnAnotherAddress) { ExpectServedOn("127.0.0.2", "127.0.0.2"); }

TEST(ListenTest, ServesOnAnAddressOfIpv6) {
  const FileDescriptor socket(::socket(AF_INET6, SOCK_STREAM, 0));
  sockaddr_in6 address = {};
  address.sin6_family = AF_INET6;
  address.sin6_addr = in6addr_loopback;
  if (bind(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
    GTEST_SKIP() << "this system has no IPv6";
  }
  ExpectServedOn("::1", "[::1]");
}

TEST(ListenTest, RefusesAddressThatIsNoIpAddress) {
  EmulatorOptions options;
  options.address = "localhost";
  EXPECT_THROW(Emulator{options}, std::runtime_error);
}

}  // namespace
}  // namespace stowra_emulator
