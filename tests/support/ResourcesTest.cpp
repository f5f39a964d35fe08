// The library as a shared object: what its loading and unloading leaves in the platform layer.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/windows/ResourceRegistry.h>

namespace {

TEST(Resources, StandWhileTheLibraryIsLoaded) {
    for (int round = 0; round < 2; ++round) {
        CString text = "before";
        ASSERT_EQ(platform::FindDialogTemplate(168), nullptr);
        ASSERT_EQ(platform::LoadString(101, text), 0);
        EXPECT_EQ(text, "before");

        void* const library = dlopen(MAILENGINE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        const platform::DialogTemplate* const dialog = platform::FindDialogTemplate(168);
        ASSERT_NE(dialog, nullptr);
        ASSERT_EQ(dialog->controls.size(), 2U);
        EXPECT_EQ(dialog->controls[0].id, 2);
        EXPECT_EQ(dialog->controls[1].id, 1086);
        EXPECT_EQ(platform::FindDialogTemplate(169), nullptr);
        EXPECT_EQ(platform::LoadString(101, text), 1);
        EXPECT_EQ(text, texts::kSocketLayerFailed);

        EXPECT_EQ(dlclose(library), 0);
        EXPECT_EQ(dlopen(MAILENGINE_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it was not unloaded";
    }
    EXPECT_EQ(platform::FindDialogTemplate(168), nullptr);
}

}  // namespace
