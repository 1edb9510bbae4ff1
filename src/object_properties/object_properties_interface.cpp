#include "factories.h"
#include "object_properties.h"

ObjectProperties* createObjectProperties() { return new ObjectProperties; }
