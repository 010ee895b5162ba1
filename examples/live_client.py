#!/usr/bin/env python3
"""Watches a live display's spectrum from a program of one's own: prints the strongest peak ten times, then asks for a finer
resolution bandwidth and prints it ten times more.

    ./play 'gen:twotone?duration=inf' --deck spectrum --serve 8080
    ./examples/live_client.py ws://127.0.0.1:8080/live
"""
import json
import sys

import websocket  # package python3-websocket

live = websocket.create_connection(sys.argv[1] if len(sys.argv) > 1 else "ws://127.0.0.1:8080/live", timeout=10)
shown = 0
while shown < 20:
    message = json.loads(live.recv())
    if message["type"] == "error":
        sys.exit(message["text"])
    peaks = message.get("message", {}).get("measurements", {}).get("peaks")
    if message.get("client") != "spectrum" or not peaks or not peaks["numPeaks"]:
        continue
    frequency, level = json.loads(peaks["locations"])[0], json.loads(peaks["peaks"])[0]
    print(f"{frequency:.3f} Hz  {level:.2f}  RBW {message['message']['spectrum']['rbw']:.3f} Hz", flush=True)
    shown += 1
    if shown == 10:
        live.send(json.dumps({"type": "tune", "request": 1, "client": "spectrum", "stage": "spectrum_estimator_filter",
                              "options": {"autoRBW": False, "rbw": 10}}))
live.close()
