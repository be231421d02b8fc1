// Built under the names of cairo, GTK and GDK, this is a library that can be opened and has none of their
// functions.
