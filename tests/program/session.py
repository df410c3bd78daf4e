#!/usr/bin/python3
"""A session manager of our own: prints its address, and ends the session when told so.

A line "logout" on its input has every program that has registered save itself for the end of the session.
What happens is told line by line: registered, saved, closed.
Source: X Session Management Protocol 1.0, sections 5 and 6.
"""

import ctypes
import os
import select
import sys
from ctypes import CFUNCTYPE, POINTER, byref, c_char_p, c_int, c_ulong, c_void_p

ICE = ctypes.CDLL("libICE.so.6")
SM = ctypes.CDLL("libSM.so.6")

SAVE_BOTH, INTERACT_ANY = 2, 2
ALL_CALLBACKS = (1 << 10) - 1
PENDING, ACCEPTED = 0, 1

for function in (
    ICE.IceGetListenConnectionNumber,
    ICE.IceConnectionStatus,
    ICE.IceConnectionNumber,
):
    function.argtypes = [c_void_p]
ICE.IceComposeNetworkIdList.restype = c_void_p
ICE.IceAcceptConnection.argtypes = [c_void_p, c_void_p]
ICE.IceAcceptConnection.restype = c_void_p
ICE.IceProcessMessages.argtypes = [c_void_p, c_void_p, c_void_p]
SM.SmsGenerateClientID.argtypes = [c_void_p]
SM.SmsGenerateClientID.restype = c_char_p
SM.SmsRegisterClientReply.argtypes = [c_void_p, c_char_p]
SM.SmsSaveYourself.argtypes = [c_void_p, c_int, c_int, c_int, c_int]
SM.SmsInteract.argtypes = SM.SmsSaveYourselfPhase2.argtypes = [c_void_p]
SM.SmsReturnProperties.argtypes = [c_void_p, c_int, c_void_p]

clients = []


def tell(word):
    print(word, flush=True)


def register(client, _data, _previous):
    SM.SmsRegisterClientReply(client, SM.SmsGenerateClientID(client))
    clients.append(client)
    tell("registered")
    return 1


def saved(_client, _data, _success):
    # No word to die: a session may end by taking the screen away, and programs had better be gone by then.
    tell("saved")


def closed(client, _data, _count, _reasons):
    if client in clients:
        clients.remove(client)
    tell("closed")


def pass_over(*_):
    pass


# In the order of the library's structure of callbacks, each with what its call brings besides.
CALLBACKS = [
    CFUNCTYPE(c_int, c_void_p, c_void_p, c_void_p)(register),
    CFUNCTYPE(None, c_void_p, c_void_p, c_int)(lambda client, *_: SM.SmsInteract(client)),
    CFUNCTYPE(None, c_void_p, c_void_p, c_int)(pass_over),
    CFUNCTYPE(None, c_void_p, c_void_p, c_int, c_int, c_int, c_int, c_int)(pass_over),
    CFUNCTYPE(None, c_void_p, c_void_p)(lambda client, _: SM.SmsSaveYourselfPhase2(client)),
    CFUNCTYPE(None, c_void_p, c_void_p, c_int)(saved),
    CFUNCTYPE(None, c_void_p, c_void_p, c_int, c_void_p)(closed),
    CFUNCTYPE(None, c_void_p, c_void_p, c_int, c_void_p)(pass_over),
    CFUNCTYPE(None, c_void_p, c_void_p, c_int, c_void_p)(pass_over),
    CFUNCTYPE(None, c_void_p, c_void_p)(lambda client, _: SM.SmsReturnProperties(client, 0, None)),
]


def greet(_client, _data, mask, callbacks, _reason):
    mask[0] = ALL_CALLBACKS
    for place, callback in enumerate(CALLBACKS):
        callbacks[2 * place] = ctypes.cast(callback, c_void_p).value
    return 1


GREET = CFUNCTYPE(c_int, c_void_p, c_void_p, POINTER(c_ulong), POINTER(c_void_p), c_void_p)(greet)
ANY_HOST = CFUNCTYPE(c_int, c_char_p)(lambda _: 1)


# The library's own handler ends the process when a program goes without a word.
LOST = CFUNCTYPE(None, c_void_p)(pass_over)


def listen():
    """The sockets that programs register at, by their numbers."""
    ICE.IceSetIOErrorHandler(LOST)
    error = ctypes.create_string_buffer(256)
    if not SM.SmsInitialize(b"tests", b"1", GREET, None, ANY_HOST, len(error), error):
        sys.exit(error.value)
    count, sockets = c_int(), POINTER(c_void_p)()
    if not ICE.IceListenForConnections(byref(count), byref(sockets), len(error), error):
        sys.exit(error.value)
    for index in range(count.value):
        ICE.IceSetHostBasedAuthProc(c_void_p(sockets[index]), ANY_HOST)
    address = ICE.IceComposeNetworkIdList(count, sockets)
    tell(ctypes.string_at(address).decode())
    return {ICE.IceGetListenConnectionNumber(sockets[index]): sockets[index] for index in range(count.value)}


def accept(socket, connections):
    status = c_int()
    connection = ICE.IceAcceptConnection(socket, byref(status))
    while ICE.IceConnectionStatus(connection) == PENDING:
        ICE.IceProcessMessages(connection, None, None)
    if ICE.IceConnectionStatus(connection) == ACCEPTED:
        connections[ICE.IceConnectionNumber(connection)] = connection


def serve():
    sockets, connections = listen(), {}
    while True:
        ready, _, _ = select.select([0, *sockets, *connections], [], [])
        for number in ready:
            if number == 0:
                if os.read(0, 100).strip() != b"logout":
                    return
                for client in clients:
                    SM.SmsSaveYourself(client, SAVE_BOTH, 1, INTERACT_ANY, 0)
            elif number in sockets:
                accept(sockets[number], connections)
            elif ICE.IceProcessMessages(connections[number], None, None) != 0:
                del connections[number]


serve()
