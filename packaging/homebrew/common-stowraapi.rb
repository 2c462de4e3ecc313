# SPDX-License-Identifier: MIT
# Builds the checkout in which it lies: brew install --HEAD packaging/homebrew/common-stowraapi.rb
class CommonStowraapi < Formula
  desc "Client of the online services that a 3D-modelling application talks to"
  license "MIT"
  head "file://#{File.expand_path("../..", __dir__)}", using: :git, branch: "main"

  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "nlohmann-json" => :build
  depends_on "pkgconf" => :build
  depends_on "rapidjson" => :build
  depends_on "cpp-httplib"
  depends_on "curl"
  depends_on "expat"
  depends_on "fmt"
  depends_on "icu4c"
  depends_on "openssl@3"
  depends_on "sqlite"
  uses_from_macos "zlib"

  def install
    system "cmake", "-S", ".", "-B", "build", "-DSTOWRA_BUILD_TESTS=OFF", "-DSTOWRA_WARNINGS_AS_ERRORS=OFF",
           *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    emulator = IO.popen([bin/"stowra-emulator", "--quiet"])
    url = emulator.gets.chomp
    assert_match "Zoë Ångström", shell_output("#{bin}/stowra user-info #{url}/user-info")
  ensure
    Process.kill("TERM", emulator.pid)
  end
end
