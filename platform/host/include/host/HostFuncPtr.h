// get_host_funcptr: the host program's table of its services, which modules
// look up by name in the program (dlsym) and call with a service number.
#pragma once

// The number of the document manager (a HostApDocManager*).
inline constexpr int kHostFuncDocManager = 2;

// Defined by the host program, exported from its executable; null for a
// number the host does not serve.
extern "C" void* get_host_funcptr(int which);

// What get_host_funcptr answers: programs define it as a call of this.
void* hostFuncPtr(int which);
