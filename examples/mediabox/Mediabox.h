/* Mediabox.h - the modules of a small media program. Each logs under a module of its own. */
#ifndef EXAMPLES_MEDIABOX_MEDIABOX_H
#define EXAMPLES_MEDIABOX_MEDIABOX_H

#ifdef __cplusplus
extern "C" {
#endif

void Tuner_Tune(unsigned aChannel);
void Player_Play(const char* aTitle);
void UserInterface_ShowMenu(int aWidth, int aHeight);

#ifdef __cplusplus
}
#endif

#endif
