// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "factories.h"
#include "object_properties.h"

ObjectProperties* createObjectProperties() { return new ObjectProperties; }
