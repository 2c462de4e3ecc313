// SPDX-License-Identifier: MIT
#include "common_stowraapi/version.h"

#define STOWRA_TEXT_OF(number) #number
#define STOWRA_TEXT(number) STOWRA_TEXT_OF(number)

const unsigned char CommonStowraapiVersionString[] =
    "@(#)PROGRAM:CommonStowraapi  PROJECT:common_stowraapi-" STOWRA_TEXT(STOWRA_BUILD_NUMBER) "\n";

const double CommonStowraapiVersionNumber = STOWRA_BUILD_NUMBER;
