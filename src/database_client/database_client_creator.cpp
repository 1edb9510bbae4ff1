#include "database_client.h"
#include "factories.h"

DataBaseClient* createDataBaseClient() { return new DataBaseClient; }
