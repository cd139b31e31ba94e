// Go, with cgo: go build -o Host host.go
package main

// #cgo pkg-config: OrvaLanguage
// #include <stdlib.h>
// #include <OrvaLanguage/OrvaLanguage.h>
import "C"

import (
	"fmt"
	"os"
	"unsafe"
)

func text(key, fallback string) string {
	k := C.CString(key)
	defer C.free(unsafe.Pointer(k))
	if found := C.ZuGetLocalizedString(k); found != nil {
		return C.GoString(found) // a copy
	}
	return fallback
}

func main() {
	language, file := C.CString("Deutsch"), C.CString("Sample.strings") // for as long as the process
	if C.ZuLoadStrings(language, file, nil) < 1 {
		fmt.Fprintln(os.Stderr, "Host: no texts")
		os.Exit(1)
	}
	fmt.Println(text("MENU_OPEN", "Open"))
	fmt.Println(text("MENU_NEW", "New"))
}
