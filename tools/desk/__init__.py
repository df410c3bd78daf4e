"""A desk of our own: a virtual screen, and the program on it, driven and looked at from outside."""
