// Visibility of the development kit: its classes are exported from libtamlin.so for
// provider code, everything else of the provider stays hidden.
#ifndef CFIEXPORT_H
#define CFIEXPORT_H

#define QORIN_PDK_API __attribute__((visibility("default")))

#endif
