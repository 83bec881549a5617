#pragma once

class Ordeal;

// What the rows do, each behind its name in the table.

void flood(Ordeal& ordeal);
void slowClients(Ordeal& ordeal);
void neverReads(Ordeal& ordeal);
void splits(Ordeal& ordeal);
void halfClose(Ordeal& ordeal);
void closeBeforeTheAnswer(Ordeal& ordeal);
void fewDescriptors(Ordeal& ordeal);
void brokenCalls(Ordeal& ordeal);
void failedAllocations(Ordeal& ordeal);
void deviceLoss(Ordeal& ordeal);
void hangUps(Ordeal& ordeal);
void diskFull(Ordeal& ordeal);
void stubbornChildren(Ordeal& ordeal);
void filledPipes(Ordeal& ordeal);
void grandchildren(Ordeal& ordeal);
void signalStorm(Ordeal& ordeal);
void randomFrames(Ordeal& ordeal);
void randomLines(Ordeal& ordeal);
void thousandConnections(Ordeal& ordeal);
void endlessLine(Ordeal& ordeal);
void endurance(Ordeal& ordeal);
