#include <mailengine/support/platform/windows/ResourceRegistry.h>

namespace {

platform::ResourceModule* g_modules = nullptr;

// The resource with that number in the list that list names, null if there is none.
template <class Resource>
const Resource* Find(std::span<const Resource> platform::ResourceModule::*list, int id) {
    for (const platform::ResourceModule* module = g_modules; module != nullptr; module = module->next)
        for (const Resource& resource : module->*list)
            if (resource.id == id) return &resource;
    return nullptr;
}

}  // namespace

void platform::RegisterResources(ResourceModule& module) {
    UnregisterResources(module);
    module.next = g_modules;
    g_modules = &module;
}

void platform::UnregisterResources(ResourceModule& module) {
    for (ResourceModule** link = &g_modules; *link != nullptr; link = &(*link)->next) {
        if (*link != &module) continue;
        *link = module.next;
        module.next = nullptr;
        return;
    }
}

const platform::DialogTemplate* platform::FindDialogTemplate(int id) {
    return Find(&ResourceModule::dialogs, id);
}

int platform::LoadString(int id, CString& text) {
    const StringResource* const found = Find(&ResourceModule::strings, id);
    if (found == nullptr) return 0;
    text = found->text;
    return 1;
}
