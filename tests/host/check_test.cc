// SPDX-License-Identifier: MIT
// What stowra check says of a response.

#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

Outcome Check(const std::string& kind, const std::string& text,
              const std::vector<std::string>& options = {}) {
  return RunStowra(Joined({"check", kind, "-"}, options), text);
}

// Texts, each with a part of the report that they are not whole.
using Rows = std::vector<std::pair<std::string, std::string>>;

void ExpectFindings(const char* kind, const Rows& rows) {
  for (const auto& [text, finding] : rows) {
    EXPECT_THAT(Check(kind, text), Ends(1, HasSubstr(finding), "")) << text;
  }
}

std::string Without(std::string text, const std::string& part) {
  const std::size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return text.erase(at, part.size());
}

std::string Replaced(const std::string& from, const std::string& to, std::string text) {
  const std::size_t at = text.find(from);
  return Without(text, from).insert(at, to);
}

std::string FeedOf(const std::string& entry) { return Feed({{entry}, 1}); }

TEST(CheckFeedTest, KeepsWholeFeed) {
  EXPECT_THAT(Check("feed", FeedOf(CollectionEntry("c1", "Chairs"))),
              Prints(AllOf(StartsWith("feed: usable, 1 of 1 parts kept\n  title: chair\n"),
                           HasSubstr("entry 1 kept: Chairs\n  kind: collection\n"))));
}

TEST(CheckFeedTest, NamesTheRuleThatDropsAnEntry) {
  const std::string model = ModelEntry("m1", "Chair");
  const std::string collection = CollectionEntry("c1", "Chairs");
  const Rows rows = {
      {Without(model, "<id>m1</id>"), "it has no id"},
      {Without(model, "<title>Chair</title>"), "it has no title"},
      {Without(model, "<author><name>Zoë</name><uri>http://a/?uq=u-1</uri></author>"),
       "it has no author"},
      {Without(model, "<name>Zoë</name>"), "author has no name"},
      {Without(model, "<uri>http://a/?uq=u-1</uri>"), "author has no uri"},
      {Without(model, " rel='alternate'"), "link 1 has no rel"},
      {Without(model, " href='http://w/m1'"), "link 1 has no href"},
      {Without(collection, " type='application/atom+xml' href='http://q/c1'"),
       "link 2 has no href"},
      {Without(model, " term='http://schemas.stowra.example/stowra/2008#model'"),
       "category has no term"},
      {Without(model, "<m:thumbnail url='http://t/m1?rtyp=st'/>"), "group has no thumbnail"},
      {Without(model, " url='http://t/m1?rtyp=st'"), "thumbnail 1 has no url"},
      {Without(model, " url='http://f/m1.kmz?rtyp=k2'"), "media content 1 has no url"},
      {Without(model, " type='application/vnd.brevix.qmf'"), "media content 2 has no type"},
      {Without(collection, " src='http://c/?x=1'"), "content has no src"},
      {Without(collection, "<content type='application/atom+xml' src='http://c/?x=1'/>"),
       "it has no content"},
      {"<entry/>", "it has no group"},
  };
  for (const auto& [entry, finding] : rows) {
    EXPECT_THAT(
        Check("feed", FeedOf(entry)),
        Ends(1, AllOf(HasSubstr("entry 1 dropped: "), HasSubstr("\n  ! " + finding + "\n")), ""));
  }
}

TEST(CheckFeedTest, SaysWhyTheFeedIsNotUsable) {
  const std::string feed = Feed({});
  const Rows rows = {
      {"", "it cannot be opened"},
      {"<feed", "it cannot be opened"},
      {"<html/>", "its root is not the element feed of Atom"},
      {Without(feed, "<title>chair is:downloadable</title>"), "the feed has no title"},
      {Without(feed, "<o:startIndex>1</o:startIndex>"), "the feed has no startIndex"},
      {Replaced("12", "many", feed), "itemsPerPage is 'many', which is no"},
  };
  for (const auto& [text, finding] : rows) {
    EXPECT_THAT(Check("feed", text),
                Ends(1, AllOf(StartsWith("feed: not usable"), HasSubstr("\n  ! " + finding)), ""));
  }
}

TEST(CheckFeedTest, ExplainsTheChoiceOfTheDownload) {
  const std::string feed = FeedOf(ModelEntry("m1", "Chair"));
  EXPECT_THAT(
      Check("feed", feed).out,
      HasSubstr("  * rendition 1, k2: chosen until a model file follows that can be opened\n"
                "  - rendition 2, s7: version 7 is above --max-qmf-version 0\n"));
  EXPECT_THAT(Check("feed", feed, {"--max-qmf-version", "8"}).out,
              HasSubstr("  - rendition 1, k2: rendition 2 is a better one\n"
                        "  * rendition 2, s7: chosen, the newest version up to 8\n"));
}

TEST(CheckFeedTest, PrintsJson) {
  const std::string entry = Without(ModelEntry("m1", "A\u202Eb"), "<id>m1</id>");
  EXPECT_THAT(
      Check("feed", FeedOf(entry), {"--json"}),
      Ends(1,
           AllOf(
               StartsWith(R"({"kind":"feed","usable":true,"whole":false,)"),
               HasSubstr(R"("parts":[{"name":"entry 1","title":"A\u202Eb","kept":false,"findings":)"
                         R"([{"text":"it has no id","loss":true})"),
               HasSubstr(R"("rtyp":"k2","chosen":true,)")),
           ""));
}

TEST(CheckEntryTest, TakesAnEntryAlone) {
  std::string entry = ModelEntry("m1", "Chair");
  entry.insert(6, " xmlns='http://www.w3.org/2005/Atom' xmlns:m='http://search.yahoo.com/mrss/'");
  EXPECT_THAT(Check("entry", entry), Prints(HasSubstr("entry 1 kept: Chair\n")));
  EXPECT_EQ(Check("entry", "<entry/>").status, 1);
}

TEST(CheckUploadConfigTest, NamesWhatIsMissing) {
  const std::string whole = Config({{"http://u/1"}, {"http://u/2", true}});
  EXPECT_EQ(Check("upload-config", whole).status, 0);
  for (const std::string part : {"<format>qmf</format>", "<name>Stühle</name>"}) {
    EXPECT_THAT(Check("upload-config", Without(whole, part)),
                Prints(HasSubstr("  - it has no " + part.substr(1, part.find('>') - 1) +
                                 "; the empty text kept\n")));
  }
  ExpectFindings(
      "upload-config",
      {{Without(whole, "<successUrl>http://r/yes</successUrl>"), "it has no successUrl"},
       {Without(whole, "<type>t/u</type>"), "file 1 dropped: Stühle\n"},
       {Without(whole, "<type>t/u</type>"), "  ! it has no type\n"},
       {Replaced("64", "wide", whole), "  ! width is 'wide', which is no 32-bit number; 0 kept\n"},
       {Replaced("true", "yes", whole), "zipped is 'yes', neither true"},
       {"<upload/>", "it has no files"},
       {"<other/>", "its root is not the element upload"}});
}

TEST(CheckUserInfoTest, NamesWhatIsMissingOrOfAnotherType) {
  EXPECT_THAT(Check("user-info", kUser),
              Prints(HasSubstr("  - it has no displayname; the empty text kept\n")));
  ExpectFindings("user-info",
                 {{"", ": not usable\n  ! it is empty\n"},
                  {"{", "it cannot be read as JSON"},
                  {R"({"uid":"u","email":"e"})", "it has no vkr_id; the old user is kept"},
                  {R"({"uid":7,"email":"e","vkr_id":"v"})",
                   "uid is a number, not a string; the empty text kept"},
                  {R"({"uid":"u","email":"e","vkr_id":"v","uid":"w"})",
                   "uid: w\n  ! uid occurs again; the last one kept"}});
}

TEST(CheckUpdateTest, NamesWhatIsMissingOrOfAnotherType) {
  const std::string offer = R"({"update":{"current_version":"2","expire_version":"1"})";
  const std::string message = offer + R"(,"message":{"id":"7","width":1.5}})";
  const std::string files = offer + R"(,"datafiles":[{"filename":"a"},"x"]})";
  EXPECT_EQ(Check("update", offer + "}").status, 0);
  ExpectFindings("update", {{"{}", "it has no update"},
                            {R"({"update":{"current_version":"2"}})",
                             "update: it has no expire_version; the empty text kept"},
                            {R"({"update":{"current_version":2,"expire_version":"1"}})",
                             "update: current_version is a number, not a string"},
                            {message, "  ! id is a string, not a number; -1 kept\n"},
                            {message, "  ! width is no whole number of 32 bits; 1 kept\n"},
                            {message, "  ! it has no height; 540 kept\n"},
                            {files, "datafile 1 kept: a\n"},
                            {files, "  ! it has no version; -1 kept\n"},
                            {files, "datafile 2 dropped: \n  ! it is a string, not an object\n"}});
}

TEST(CheckExtensionsTest, NamesWhatIsMissingOrOfAnotherType) {
  const std::string list =
      R"({"extensions":[7,{"id":"a","version":2.5,"enabled":true},{"id":"a","version":"2.5",)"
      R"("file_url":"u","update":true,"remote_kill":false,"version_uuid":"w","enabled":1}]})";
  ExpectFindings("extensions",
                 {{list, "element 1 dropped: \n  ! it is a number, not an object\n"},
                  {list, "  ! version is a number, not a string; 0 kept\n"},
                  {list, "  ! enabled is a boolean, not a whole number of 32 bits; false kept\n"},
                  {list, "  ! element 3 has the same id and is kept\n"},
                  {list, "element 3 kept: a\n  version: 2.5\n"},
                  {"{}", "it has no extensions"},
                  {R"({"extensions":{}})", "extensions is an object, not an array"}});
}

class CheckTest : public FolderTest {};

TEST_F(CheckTest, ReadsFilesAndUrls) {
  const std::string file = Make("feed.xml", Feed({}));
  const RawServer server(Always(Response(200, Feed({}))));
  const RawServer refusing(Always(Response(404, "")));
  EXPECT_EQ(RunStowra({"check", "feed", file}).status, 0);
  EXPECT_EQ(RunStowra({"check", "feed", file + ".not"}).status, 2);
  EXPECT_EQ(RunStowra({"check", "feed"}).status, 2);
  EXPECT_EQ(RunStowra({"check", "table", file}).status, 2);
  EXPECT_EQ(RunStowra({"check", "feed", server.Url()}).status, 0);
  EXPECT_EQ(RunStowra({"check", "feed", refusing.Url()}).status, 4);
}

}  // namespace
}  // namespace stowra_test
