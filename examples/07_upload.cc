// SPDX-License-Identifier: MIT
// Uploads a model in the background and shows the progress.
//
// Run:
//   stowra-emulator --port 8080
//   07_upload http://127.0.0.1:8080
//
// Prints:
//   25 % sent
//   50 % sent
//   75 % sent
//   100 % sent
//   show http://127.0.0.1:8080/upload-succeeded

#include <cstring>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "common_stowraapi/common_stowraapi.h"
#include "main_queue.h"

using ovrant::internet::InternetData;
using ovrant::internet::TransferEvent;
namespace client = ovrant::stowraapiclient;

struct UploadEnd : ovrant::IObserver {
  using IObserver::OnNotification;
  void OnNotification(const char* name, void*) override {
    has_response = std::strcmp(name, "UploadReturned") == 0;
    done = true;
  }
  bool done = false;
  bool has_response = false;
};

int main(int argc, char** argv) {
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  client::UploadConfig config;
  config.Init((service + "/upload-config?name=Stool").c_str());
  if (!config.SynchronousQuery() || config.files_.empty()) return 1;

  client::UploadFile& file = config.files_.front();
  file.file_path_ = "models/stool.qmf";
  const std::vector<unsigned char> model(3000000, 'q');  // the bytes of that file
  const std::string boundary = client::multipartupload::GetBoundaryString();
  std::stringstream form;
  client::multipartupload::SetupPayload("m42", &file, model.data(), model.size(), boundary, &form);
  const std::string body = form.str();

  InternetData transport(file.upload_url_);
  transport.set_send_data(reinterpret_cast<const unsigned char*>(body.data()), body.size());
  for (const auto& [name, value] :
       client::multipartupload::CreateHeaderDictionary(boundary, body.size())) {
    transport.SetValueForHTTPSendHeaders(name, value);
  }

  MainQueue queue;
  // The listener hears of each transfer, on the library's thread.
  unsigned long quarters = 0;
  InternetData::SetTransferListener([&](const TransferEvent& event) {
    while (event.bytes_to_send > 0 && quarters < event.bytes_sent * 4 / event.bytes_to_send) {
      queue.Post([percent = 25 * ++quarters] { std::cout << percent << " % sent\n"; });
    }
  });
  UploadEnd end;
  CNotificationCenter::Default()->AddObserver("UploadReturned", &end);
  CNotificationCenter::Default()->AddObserver("UploadFailed", &end);
  ovrant::internet::InternetDataDelegate delegate(nullptr, 0, "UploadReturned", 0, "UploadFailed");
  transport.UploadWithDelegate(&delegate, nullptr);
  queue.RunUntil(end.done);
  CNotificationCenter::Default()->RemoveObserver(&end);
  InternetData::SetTransferListener(nullptr);

  const bool taken = end.has_response && transport.status_code() == 201;
  std::cout << "show " << (taken ? config.success_url_ : config.failure_url_) << '\n';
  return taken ? 0 : 1;
}
