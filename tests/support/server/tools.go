//go:build tools

// Package tools pins the server that the tests use when no other one is at hand.
package tools

import _ "github.com/FerretDB/FerretDB/cmd/ferretdb"
