// What the plug-in asks of macOS's Core Services, so that it can be compiled without Apple's own headers.
#pragma once

#include <MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct FSRef {
    UInt8 hidden[80];
} FSRef;

enum { kUserDomain = -32763, kTemporaryFolderType = 'temp', kDontCreateFolder = false };

OSErr FSFindFolder(short domain, OSType folder_type, Boolean create, FSRef *found);

#ifdef __cplusplus
}
#endif
