// A thermometer sends whole degrees, a display wants text: the connection
// converts. What is queued waits until the events are distributed, as the main
// loop does at the end of each of its passes.
#include <iostream>

#include "event/DataTypes.h"
#include "event/EventHandler.h"
#include "event/GlobalOrder.h"
#include "event/Obj.h"

class Thermometer : public qzObj {
  public:
    Thermometer() : degrees(addOutput("degrees", qzDT_int)) {}
    void report(int value, qzSendFlags how) { sendInt(degrees, value, how); }

  private:
    qzOutputChannel* degrees;
};

class Display : public qzObj {
  public:
    Display() { addInput("text", qzDT_CharPtr, this, (void (*)())show, 0); }

  private:
    static void show(void*, char* text) { std::cout << text << " degrees\n"; }
};

int main() {
    qzInitializeToolkit();
    Thermometer thermometer;
    {
        Display display;
        thermometer.connect("degrees", &display, "text");
        thermometer.report(20, qzObj::qzSF_Queued);
        thermometer.report(21, qzObj::qzSF_Queued);
        thermometer.report(99, qzObj::qzSF_Urgent);   // ahead of the others
        thermometer.report(7, qzObj::qzSF_Immediate); // within this call
        std::cout << "distributing\n";
        qz_theEventHandler->distributeEvents();
        thermometer.report(22, qzObj::qzSF_Queued);
    } // the display goes, and so does what was queued for it
    std::cout << qz_theEventHandler->getCount() << " left\n";
}
