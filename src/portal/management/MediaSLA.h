// MediaSLA.h: the response targets for messages of the shared inbox, rows of FrontSLAs.
#pragma once

class ManagerContext;
class WebItem;

// "fr.sla": the list. The caller owns the answers; they throw the server's message.
WebItem* BuildMediaSLAs(ManagerContext& ctx);
// "fr.sla.add" and "fr.sla.edit" (the argument "index"): the form.
WebItem* BuildMediaSLAAdd(ManagerContext& ctx);
WebItem* BuildMediaSLAEdit(ManagerContext& ctx);

// May the caller change them? Configuring the contact centre is a right of its own, and restricted
// users configure nothing.
bool MayConfigure(ManagerContext& ctx);
