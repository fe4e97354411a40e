#include "tests/dialogs/gallery/for_each_form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit::test {

void ForEachForm(const std::function<void(QWidget&, const Exhibited&)>& rule) {
  ASSERT_THAT(Gallery(), testing::Not(testing::IsEmpty()));
  for (const Exhibited& exhibited : Gallery()) {
    SCOPED_TRACE(exhibited.name);
    const std::unique_ptr<QWidget> form = exhibited.make();
    EXPECT_TRUE(ShowSettled(*form));
    rule(*form, exhibited);
  }
}

void ForEachForm(const std::function<void(QWidget&)>& rule) {
  ForEachForm([&](QWidget& form, const Exhibited&) { rule(form); });
}

}  // namespace rasterkit::test
