"""The built program beside other converters: the same pictures, the same machine, in turns."""
