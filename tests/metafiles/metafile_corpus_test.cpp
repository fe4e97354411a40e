// Reads the metafiles of the corpus; skipped if it is missing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/corpus.h"

namespace rasterkit::test {
namespace {

MetafileFacts FactsOf(const std::string& path) {
  TFileStream stream((CorpusFolder() / path).string());
  return ReadMetafileFacts(stream.ReadToEnd());
}

TEST(MetafileCorpus, Should_TellKindAndSizeOfEveryFile) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int emf = 0, wmf = 0, damaged = 0;
  for (const std::string folder : {"emf", "wmf", "wrongext"}) {
    for (const CorpusEntry& entry : CorpusEntries(folder)) {
      const std::string& path = entry.at("path");
      const bool isEmf = folder == "wrongext" ? path.ends_with("_is_emf.wmf") : folder == "emf";
      const bool isWmf = folder == "wrongext" ? path.ends_with("_is_wmf.emf") : folder == "wmf";
      if (!isEmf && !isWmf) continue;
      SCOPED_TRACE(path);
      const MetafileFacts facts = FactsOf(path);
      EXPECT_EQ(facts.kind == MetafileKind::emf, isEmf);
      EXPECT_GT(facts.records, 2u);
      EXPECT_GT(facts.width, 10);
      EXPECT_LT(facts.width, 4000);
      EXPECT_GT(facts.height, 10);
      EXPECT_LT(facts.height, 4000);
      (isEmf ? emf : wmf) += 1;
      damaged += facts.warnings.empty() ? 0 : 1;
    }
  }
  EXPECT_EQ(emf, 31);
  EXPECT_EQ(wmf, 21);
  EXPECT_EQ(damaged, 1);
}

}  // namespace
}  // namespace rasterkit::test
