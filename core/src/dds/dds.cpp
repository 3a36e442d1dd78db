// The module's entry points: VEXInit registers what the module offers with the
// host, VEXUnInit takes the document-manager reactor off again. The reactor
// gives each document the module's palette properties while it is open.
#define VEX_SRCFILE "dds"
#include <dlfcn.h>

#include "DimStyleCommand.h"
#include "host/HostApDocManager.h"
#include "host/HostFuncPtr.h"
#include "host/HostTranslation.h"
#include "host/IVxContext.h"
#include "res/DdsStrings.h"
#include "vextempl.h"
#include "vextypes.h"

namespace {

class CVxDocManagerReactor : public HostApDocManagerReactor {
public:
  void documentCreated(HostApDocument* pDoc) override;
  void documentToBeDestroyed(HostApDocument* pDoc) override;

private:
  // The palette's dimension properties, made once and shared by every document.
  VexArray<IOdProperty*> m_properties;
};

void CVxDocManagerReactor::documentCreated(HostApDocument* pDoc) {
  RETERRIF3VOID(!pDoc);
  IOdPropertyManager* pPM = nullptr;
  RETERRIF3VOID(!pDoc->getPropManager(&pPM));
  for (IOdProperty* pProp : m_properties) pPM->addProperty(pProp);
}

void CVxDocManagerReactor::documentToBeDestroyed(HostApDocument* pDoc) {
  RETERRIF3VOID(!pDoc);
  IOdPropertyManager* pPM = nullptr;
  RETERRIF3VOID(!pDoc->getPropManager(&pPM));
  for (IOdProperty* pProp : m_properties) pPM->removeProperty(pProp);
}

// Static: it lives exactly as long as the module is loaded.
CVxDocManagerReactor g_docManagerReactor;

// The host's document manager, through the function the host program exports.
HostApDocManager* docManager() {
  using GetHostFuncPtr = void* (*)(int);
  auto getHostFuncPtr = reinterpret_cast<GetHostFuncPtr>(dlsym(RTLD_DEFAULT, "get_host_funcptr"));
  return getHostFuncPtr ? static_cast<HostApDocManager*>(getHostFuncPtr(kHostFuncDocManager)) : nullptr;
}

// The module's own dlopen handle, which names it to the host.
void* moduleHandle() {
  Dl_info info;
  if (!dladdr(reinterpret_cast<void*>(&docManager), &info) || !info.dli_fname) return nullptr;
  // RTLD_NOLOAD only finds the loaded module; its extra reference is given back
  // at once, the host's own keeps the module loaded.
  void* handle = dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle;
}

}  // namespace

// The host's flag word for "-dimstyle", passed through as it stands.
constexpr uint32_t kDimStyleCommandFlags = 0x2100000;

extern "C" int32_t VEXInit() {
  void* hModule = moduleHandle();
  // Module literals reach Supp_Translate through the string table's English
  // column, so that the table is the one place of every text.
  hostRegisterStringTable(hModule, [](const wchar_t*, const wchar_t* text, const std::string& language,
                                      std::wstring& out) { return dds::ddsTranslate(text, language, out); });
  Supp_InitResTranslation(hModule);
  // The dialog command ("DIM", "DimStylesCmd") is not registered: the manager
  // dialog that it opens does not exist yet.
  if (gpVxContext) {
    VxCommandDesc desc{L"-dimstyle", [] { dds::DimStyleCommand(docManager()); }, kDimStyleCommandFlags};
    gpVxContext->addCommand(desc);
  }
  HostApDocManager* pDocManager = docManager();
  RETERRIF(!pDocManager, E_FAIL);
  return pDocManager->addReactor(&g_docManagerReactor);
}

extern "C" void VEXUnInit() {
  HostApDocManager* pDocManager = docManager();
  RETERRIF3VOID(!pDocManager);
  pDocManager->removeReactor(&g_docManagerReactor);
}
