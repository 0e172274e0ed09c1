// SPDX-License-Identifier: MIT
#ifndef LXDOC_LXDOC_H
#define LXDOC_LXDOC_H

// Everything a host compiles against.
#include "idrawpage.h"
#include "ilxcmd.h"
#include "ilxdocument.h"
#include "ilxfrontpage.h"
#include "ilxobject.h"
#include "ilxrecordpage.h"
#include "ilxresmgr.h"
#include "linecapstyle.h"
#include "lxarchivecheck.h"
#include "lxarchivelimits.h"
#include "lxdoc_export.h"
#include "lxreadlimits.h"
#include "pageformat.h"
#include "tagpagegrid.h"

// The one entry point: a new, independent document owned by the caller, who
// ends it with release(), never with delete.
extern "C" LXDOC_EXPORT ILXDocument *get_interface();

#endif
