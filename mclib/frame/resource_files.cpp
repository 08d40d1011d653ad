// Resource files: opening with creation on demand, writing in place of what is there, and a message for what fails.
#include "mclib/frame/resource_files.h"

#include <cstdio>
#include <cstring>

#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/text_buffer.h"
#include "resources/ids.h"

namespace mc {

namespace {

constexpr const char* createdTitle = "Attributes";

int tellFile(mc::Error<const char*> message, const McHandle& h) {
    mc::showNotice(message, h.name);
    return MCLIB_ERROR;
}

int checked(int writeStatus, const McHandle& h) {
    if (writeStatus == MDL_SUCCESS) return MCLIB_SUCCESS;
    return tellFile(writeStatus == MDL_RSC_READ_ONLY ? ids::errors::resourceProtected : ids::errors::resourceNotWritten,
                    h);
}

bool makeAndOpen(McHandle& h, int mode) {
    return mdlResource_createFile(h.name, createdTitle, MDL_RSC_WRITE) == MDL_SUCCESS &&
           mdlResource_openFile(&h.handle, h.name, mode) == MDL_SUCCESS;
}

// With the handle 0 of a file that isn't open, the host would find a block of some other file.
void* loadFrom(const McHandle& h, int32_t type, int32_t id) {
    return h.handle != 0 ? mdlResource_load(h.handle, type, id) : nullptr;
}
StringList* loadListFrom(const McHandle& h, int32_t id) {
    return h.handle != 0 ? mdlStringList_loadResource(h.handle, id) : nullptr;
}

void tellSmall(const McHandle& h, int32_t type, int32_t id, int32_t stored, int size) {
    char line[512];
    std::snprintf(line, sizeof line, "%s: resource %d of type 0x%08x has %d bytes, %d are needed; it was passed over",
                  h.name, id, static_cast<unsigned>(type), stored, size);
    mdlOutput_messageCenter(MDL_PRIORITY_WARNING, line, "", 0);
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibResource_openFile(McHandle* h, const char* name, int mode) {
    if (!h || !name) return MCLIB_ERROR;
    copyText(h->name, name);
    h->handle = 0;
    const bool whole = std::strlen(name) < sizeof h->name;  // a name that was cut is another file's
    if (whole && mdlResource_openFile(&h->handle, h->name, mode) == MDL_SUCCESS) return MCLIB_SUCCESS;
    if (whole && mode != MDL_RSC_READ && makeAndOpen(*h, mode)) return MCLIB_SUCCESS;
    return tellFile(mode != MDL_RSC_READ ? ids::errors::cantOpen : ids::errors::resourceUnreadable, *h);
}

int mclibResource_closeFile(McHandle* h) {
    return h ? mdlResource_closeFile(h->handle) : int{MCLIB_ERROR};
}

int mclibResource_add(McHandle* h, int32_t type, int32_t id, const void* data, int size, int32_t attributes) {
    if (!h || size < 0 || (!data && size > 0)) return MCLIB_ERROR;
    void* block = loadFrom(*h, type, id);
    if (!block) return checked(mdlResource_add(h->handle, type, id, data, size, attributes, h->name), *h);
    int status = MDL_ERROR;
    if (size <= mdlResource_size(block)) {
        if (size > 0) std::memcpy(block, data, static_cast<size_t>(size));
        status = mdlResource_write(block);
    }
    mdlResource_free(block);
    return checked(status, *h);
}

int mclibResource_load(McHandle* h, int32_t type, int32_t id, void* dest, int size) {
    if (!h || !dest || size < 0) return MCLIB_ERROR;
    void* block = loadFrom(*h, type, id);
    if (!block) return MCLIB_ERROR;
    const int32_t stored = mdlResource_size(block);
    if (size <= stored)
        std::memcpy(dest, block, static_cast<size_t>(size));
    else
        tellSmall(*h, type, id, stored, size);
    mdlResource_free(block);
    return size <= stored ? MCLIB_SUCCESS : MCLIB_ERROR;
}

int mclibResource_addStringList(McHandle* h, int32_t id, StringList* list) {
    if (!h || !list) return MCLIB_ERROR;
    StringList* stored = loadListFrom(*h, id);
    if (!stored) return checked(mdlStringList_addResource(h->handle, id, list, h->name), *h);
    mdlStringList_destroy(stored);
    return checked(mdlStringList_writeResource(list, h->handle, id, h->name), *h);
}

StringList* mclibResource_loadStringList(McHandle* h, int32_t id) {
    return h ? loadListFrom(*h, id) : nullptr;
}
