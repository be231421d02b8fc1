// Nothing: built under the names of cairo, GTK and GDK it is a library that opens but holds none of their
// functions.
